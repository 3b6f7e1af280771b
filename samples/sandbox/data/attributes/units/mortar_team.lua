-- Two soldiers and a tube.
name = "mortar_team"
title = "Mörsertrupp"
health = 75
armoured = false
speed = 2.6 -- metres per second
turn_rate = 3.032 -- radians per second
weapons = { "mortar" }
patrol = {
    { x = 105.75, y = 29.25, wait = 5 },
    { x = -64.0, y = -60.0, wait = 7 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
