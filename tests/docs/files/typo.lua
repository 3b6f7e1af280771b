SubMenuItems = {
    { name = "Add 100 requisition", type = Command, command = "cheat_requisition(100)" },
    { name = "Fog of war", type = Variable, get = "fog_get()", set = "fog_set(%d)" },
    { name = "Game speed", type = Variable, var_type = Float,
      get = "speed_get()", set = "speed_set(%.2f)", min = 0, max = 4, stepsize = 0.25 },
    { name = "-", type = Separator },
    { name = "Units", type = SubMenu, SubMenuItems = {
        { name = "Spawn a tank", type = Command, comand = "spawn('light_tank')" },
    } },
}
