-- Nothing moves without it.
name = "supply_truck"
title = "Versorgungswagen"
health = 150
armoured = false
speed = 15.0 -- metres per second
turn_rate = 2.618 -- radians per second
weapons = {}
patrol = {
    { x = 127.25, y = 96.0, wait = 3 },
    { x = -120.0, y = -3.0, wait = 0 },
    { x = 195.75, y = 116.0, wait = 7 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
