-- A prototype; handle with care.
name = "laser_drone"
title = "Laserdrohne"
health = 130
armoured = false
speed = 32.0 -- metres per second
turn_rate = 2.717 -- radians per second
weapons = { "laser" }
patrol = {
    { x = -7.0, y = 194.0, wait = 9 },
    { x = 136.25, y = -8.25, wait = 5 },
    { x = 119.75, y = -166.0, wait = 1 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
