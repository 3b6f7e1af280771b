SubMenuItems = {
    { name = "Units", type = SubMenu, SubMenuItems = {
        { name = "Spawn a tank", type = Command, command = "spawn('light_tank')" },
    } },
    { name = "-", type = Separator },
    { name = "Fog of war", type = Variable, get = "fog_get()", set = "fog_set(%s)" },
    { name = "Speed", type = Variable, var_type = Float, get = "speed_get()", set = "speed_set(%.2f)", max = 4 },
}
