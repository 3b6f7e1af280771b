-- Sees far and stays hidden.
name = "sniper"
title = "Scharfschütze"
health = 45
armoured = false
speed = 3.8 -- metres per second
turn_rate = 3.236 -- radians per second
weapons = { "sniper_rifle" }
patrol = {
    { x = -163.75, y = -30.25, wait = 9 },
    { x = -150.5, y = -110.75, wait = 9 },
    { x = 179.0, y = 30.75, wait = 6 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
