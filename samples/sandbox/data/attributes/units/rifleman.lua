-- The backbone of every army.
name = "rifleman"
title = "Schütze"
health = 60
armoured = false
speed = 4.2 -- metres per second
turn_rate = 3.13 -- radians per second
weapons = { "machine_gun" }
patrol = {
    { x = 179.25, y = -42.0, wait = 0 },
    { x = -171.0, y = 14.25, wait = 5 },
    { x = 33.0, y = 164.0, wait = 3 },
    { x = -185.0, y = -26.5, wait = 1 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
