-- Fast, fragile, curious.
name = "scout_car"
title = "Spähwagen"
health = 180
armoured = false
speed = 21.5 -- metres per second
turn_rate = 2.483 -- radians per second
weapons = { "machine_gun" }
patrol = {
    { x = -172.5, y = -162.5, wait = 4 },
    { x = -10.25, y = 65.75, wait = 0 },
    { x = 92.5, y = -76.25, wait = 9 },
    { x = 197.25, y = 128.75, wait = 4 },
    { x = 86.75, y = 154.75, wait = 5 },
}

types = {
    integer = { "health", "patrol.*.wait" },
    wide = { "title" },
    ordered = { "weapons", "patrol" },
}
