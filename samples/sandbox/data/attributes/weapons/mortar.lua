-- Light indirect fire, carried by infantry.
name = "mortar"
title = "Mörser"
damage = 65
rate = 0.5 -- shots per second
range = 600.0 -- metres
explosive = true
ammunition = { capacity = 1, reload = 2.0 }

types = {
    integer = { "damage", "ammunition.capacity" },
    wide = { "title" },
}
