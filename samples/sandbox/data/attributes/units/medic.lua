-- Heals whoever is near.
name = "medic"
title = "Sanitäter"
health = 50
armoured = false
speed = 4.4 -- metres per second
turn_rate = 3.2 -- radians per second
weapons = {}
patrol = {
    { x = 111.0, y = -13.75, wait = 7 },
    { x = -55.25, y = -100.75, wait = 2 },
    { x = 79.5, y = -102.25, wait = 9 },
    { x = -80.0, y = -2.0, wait = 5 },
    { x = 91.75, y = -84.75, wait = 1 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
