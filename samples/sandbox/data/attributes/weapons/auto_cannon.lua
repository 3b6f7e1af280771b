-- Fast and precise, for light vehicles.
name = "auto_cannon"
title = "Schnellfeuerkanone"
damage = 28
rate = 4.0 -- shots per second
range = 320.0 -- metres
explosive = false
ammunition = { capacity = 60, reload = 2.5 }

types = {
    integer = { "damage", "ammunition.capacity" },
    wide = { "title" },
}
