-- Scouts in force.
name = "light_tank"
title = "Leichter Panzer"
health = 420
armoured = true
speed = 16.5 -- metres per second
turn_rate = 1.756 -- radians per second
weapons = { "auto_cannon", "machine_gun" }
patrol = {
    { x = 95.25, y = -40.75, wait = 7 },
    { x = -167.75, y = -20.25, wait = 8 },
    { x = -88.75, y = -145.25, wait = 6 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
