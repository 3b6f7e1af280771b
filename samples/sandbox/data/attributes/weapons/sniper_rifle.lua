-- One shot, one hit.
name = "sniper_rifle"
title = "Präzisionsgewehr"
damage = 85
rate = 0.4 -- shots per second
range = 650.0 -- metres
explosive = false
ammunition = { capacity = 5, reload = 2.2 }

types = {
    integer = { "damage", "ammunition.capacity" },
    wide = { "title" },
}
