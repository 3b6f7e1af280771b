-- Decides battles.
name = "battle_tank"
title = "Kampfpanzer"
health = 900
armoured = true
speed = 12.0 -- metres per second
turn_rate = 1.108 -- radians per second
weapons = { "tank_gun", "machine_gun" }
patrol = {
    { x = 82.5, y = 194.5, wait = 6 },
    { x = 183.0, y = -139.75, wait = 2 },
    { x = -139.5, y = 63.5, wait = 0 },
    { x = -6.0, y = 35.75, wait = 4 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
