-- Reaches behind the front.
name = "missile_carrier"
title = "Lenkwaffenträger"
health = 340
armoured = false
speed = 8.0 -- metres per second
turn_rate = 1.946 -- radians per second
weapons = { "missile" }
patrol = {
    { x = 191.5, y = 145.25, wait = 4 },
    { x = 7.25, y = 163.25, wait = 5 },
    { x = 108.75, y = 13.0, wait = 8 },
    { x = -68.25, y = -110.75, wait = 3 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
