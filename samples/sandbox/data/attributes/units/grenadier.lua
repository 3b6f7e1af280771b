-- Clears trenches.
name = "grenadier"
title = "Grenadier"
health = 65
armoured = false
speed = 3.9 -- metres per second
turn_rate = 3.097 -- radians per second
weapons = { "grenade_launcher" }
patrol = {
    { x = 190.5, y = -181.25, wait = 2 },
    { x = -84.25, y = -142.25, wait = 1 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
