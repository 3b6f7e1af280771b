-- Opens fortified lines.
name = "flame_tank"
title = "Flammpanzer"
health = 820
armoured = true
speed = 10.5 -- metres per second
turn_rate = 1.18 -- radians per second
weapons = { "flamethrower", "machine_gun" }
patrol = {
    { x = -40.75, y = -42.25, wait = 7 },
    { x = 53.75, y = -175.0, wait = 1 },
    { x = 193.75, y = -23.75, wait = 1 },
    { x = -64.0, y = -179.0, wait = 0 },
    { x = 26.75, y = 14.75, wait = 5 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
