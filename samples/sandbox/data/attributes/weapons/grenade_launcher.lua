-- Area damage for infantry.
name = "grenade_launcher"
title = "Granatwerfer"
damage = 55
rate = 1.25 -- shots per second
range = 300.0 -- metres
explosive = true
ammunition = { capacity = 6, reload = 3.5 }

types = {
    integer = { "damage", "ammunition.capacity" },
    wide = { "title" },
}
