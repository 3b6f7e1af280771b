-- Ignores terrain.
name = "gunship"
title = "Kampfhubschrauber"
health = 440
armoured = true
speed = 48.0 -- metres per second
turn_rate = 1.714 -- radians per second
weapons = { "auto_cannon", "rocket_pod" }
patrol = {
    { x = -122.5, y = 42.0, wait = 5 },
    { x = -21.0, y = 174.75, wait = 5 },
    { x = 182.0, y = -54.25, wait = 3 },
    { x = -159.25, y = -12.0, wait = 5 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
