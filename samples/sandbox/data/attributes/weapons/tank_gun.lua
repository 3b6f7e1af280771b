-- The main gun of every heavy vehicle.
name = "tank_gun"
title = "Panzerkanone"
damage = 140
rate = 0.25 -- shots per second
range = 520.0 -- metres
explosive = true
ammunition = { capacity = 1, reload = 4.0 }

types = {
    integer = { "damage", "ammunition.capacity" },
    wide = { "title" },
}
