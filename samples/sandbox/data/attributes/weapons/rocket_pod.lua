-- Sixteen rockets at once, then a long wait.
name = "rocket_pod"
title = "Raketenwerfer"
damage = 48
rate = 8.0 -- shots per second
range = 700.0 -- metres
explosive = true
ammunition = { capacity = 16, reload = 12.5 }

types = {
    integer = { "damage", "ammunition.capacity" },
    wide = { "title" },
}
