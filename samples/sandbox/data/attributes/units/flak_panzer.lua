-- Keeps the sky clean.
name = "flak_panzer"
title = "Flakpanzer"
health = 500
armoured = true
speed = 11.0 -- metres per second
turn_rate = 1.6 -- radians per second
weapons = { "anti_air_gun" }
patrol = {
    { x = -118.0, y = 180.75, wait = 5 },
    { x = -141.25, y = 17.25, wait = 0 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
