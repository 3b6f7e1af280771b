-- Fires and leaves.
name = "rocket_truck"
title = "Raketenwagen"
health = 240
armoured = false
speed = 13.5 -- metres per second
turn_rate = 2.25 -- radians per second
weapons = { "rocket_pod" }
patrol = {
    { x = -10.25, y = -153.75, wait = 7 },
    { x = 197.25, y = -13.5, wait = 7 },
    { x = -75.25, y = -142.25, wait = 5 },
    { x = 96.25, y = -8.5, wait = 2 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
