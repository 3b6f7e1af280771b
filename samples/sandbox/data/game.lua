-- Runs in the global state when the game starts: what designers may call from the console.
greeting = "commander"

function hello(name)
    return "Hello, " .. (name or greeting)
end
