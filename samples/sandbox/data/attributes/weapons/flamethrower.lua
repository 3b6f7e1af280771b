-- Short range; clears buildings.
name = "flamethrower"
title = "Flammenwerfer"
damage = 35
rate = 20.0 -- shots per second
range = 60.0 -- metres
explosive = false
ammunition = { capacity = 400, reload = 5.0 }

types = {
    integer = { "damage", "ammunition.capacity" },
    wide = { "title" },
}
