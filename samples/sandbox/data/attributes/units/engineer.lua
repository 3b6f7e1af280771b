-- Builds bridges and repairs vehicles.
name = "engineer"
title = "Pionier"
health = 55
armoured = false
speed = 3.6 -- metres per second
turn_rate = 3.165 -- radians per second
weapons = {}
patrol = {
    { x = 24.0, y = 72.75, wait = 1 },
    { x = 32.75, y = 55.5, wait = 5 },
    { x = -161.0, y = 84.75, wait = 9 },
    { x = -176.25, y = -117.5, wait = 8 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
