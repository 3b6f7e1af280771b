-- Artillery that moves.
name = "howitzer_carrier"
title = "Selbstfahrlafette"
health = 380
armoured = true
speed = 9.0 -- metres per second
turn_rate = 1.846 -- radians per second
weapons = { "howitzer" }
patrol = {
    { x = -171.75, y = -116.75, wait = 6 },
    { x = -140.5, y = -99.0, wait = 5 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
