-- Best kept away from friends.
name = "flame_trooper"
title = "Flammenwerfertrupp"
health = 70
armoured = false
speed = 3.2 -- metres per second
turn_rate = 3.064 -- radians per second
weapons = { "flamethrower" }
patrol = {
    { x = 4.75, y = -134.0, wait = 5 },
    { x = -139.25, y = -4.5, wait = 0 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
