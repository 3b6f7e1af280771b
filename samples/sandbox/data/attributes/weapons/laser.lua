-- Needs no ammunition, only time.
name = "laser"
title = "Laser"
damage = 9
rate = 60.0 -- shots per second
range = 380.0 -- metres
explosive = false
ammunition = { capacity = 1000, reload = 0.5 }

types = {
    integer = { "damage", "ammunition.capacity" },
    wide = { "title" },
}
