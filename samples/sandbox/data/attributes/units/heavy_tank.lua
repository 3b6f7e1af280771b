-- Slow and nearly unstoppable.
name = "heavy_tank"
title = "Schwerer Panzer"
health = 1500
armoured = true
speed = 7.5 -- metres per second
turn_rate = 0.758 -- radians per second
weapons = { "tank_gun", "auto_cannon", "machine_gun" }
patrol = {
    { x = -198.25, y = -32.5, wait = 5 },
    { x = 44.0, y = -72.5, wait = 2 },
    { x = 76.25, y = 6.25, wait = 9 },
    { x = 62.0, y = 96.0, wait = 7 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
