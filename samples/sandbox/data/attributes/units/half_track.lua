-- Carries a squad to where it is needed.
name = "half_track"
title = "Halbkettenfahrzeug"
health = 260
armoured = true
speed = 14.0 -- metres per second
turn_rate = 2.182 -- radians per second
weapons = { "machine_gun" }
patrol = {
    { x = 176.25, y = -57.75, wait = 9 },
    { x = -153.25, y = -176.5, wait = 4 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
