-- Suppresses infantry; useless against armour.
name = "machine_gun"
title = "Maschinengewehr"
damage = 12
rate = 9.5 -- shots per second
range = 240.0 -- metres
explosive = false
ammunition = { capacity = 200, reload = 1.8 }

types = {
    integer = { "damage", "ammunition.capacity" },
    wide = { "title" },
}
