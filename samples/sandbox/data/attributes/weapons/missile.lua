-- Finds its own way to the target.
name = "missile"
title = "Lenkflugkörper"
damage = 300
rate = 0.2 -- shots per second
range = 1100.0 -- metres
explosive = true
ammunition = { capacity = 2, reload = 15.0 }

types = {
    integer = { "damage", "ammunition.capacity" },
    wide = { "title" },
}
