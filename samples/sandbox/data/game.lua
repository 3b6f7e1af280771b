-- Runs in the global state when the game starts: what designers may call from the console and the menu.
greeting = "commander"

function hello(name)
    return "Hello, " .. (name or greeting)
end

-- Values that the menu shows, and what changes them in the game.
tanks = 0
detail = 2
speed = 1
paused = false
bounds = false
names = true
selected = 0

function set_tanks(count)
    tanks = count
    sysconfig_setsetting("tanks", count)
end

function set_detail(level)
    detail = level
    sysconfig_setsetting("textureDetail", level)
end

function set_speed(factor)
    speed = factor
    game_speed(factor)
end

function set_paused(on)
    paused = on
    game_pause(on)
end

function set_bounds(on)
    bounds = on
    game_bounds(on)
end

function set_names(on)
    names = on
    dr_setdisplay("Names", on)
end

function select_next()
    selected = selected + 1
    game_select(selected)
end
