-- Engages aircraft only.
name = "anti_air_gun"
title = "Flugabwehrkanone"
damage = 22
rate = 12.0 -- shots per second
range = 480.0 -- metres
explosive = false
ammunition = { capacity = 120, reload = 3.0 }

types = {
    integer = { "damage", "ammunition.capacity" },
    wide = { "title" },
}
