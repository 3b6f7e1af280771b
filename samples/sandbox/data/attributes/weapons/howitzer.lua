-- Indirect fire over hills.
name = "howitzer"
title = "Haubitze"
damage = 220
rate = 0.125 -- shots per second
range = 1400.0 -- metres
explosive = true
ammunition = { capacity = 1, reload = 8.0 }

types = {
    integer = { "damage", "ammunition.capacity" },
    wide = { "title" },
}
