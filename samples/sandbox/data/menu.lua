-- The menu of the running game, F1. Saving this file in an editor loads it again.
-- What the lines show and change are globals and functions of data/game.lua.

SubMenuItems = {
    { name = "Units", type = SubMenu, SubMenuItems = {
        { name = "Tanks", type = Variable, var_type = Float, get = "tanks", set = "set_tanks(%.0f)",
          min = 0, max = 60, stepsize = 4 },
        { name = "Next tank", type = Command, command = "select_next()" },
        { name = "Show bound volume", type = Variable, get = "bounds", set = "set_bounds(%s)" },
        { name = "Show names", type = Variable, get = "names", set = "set_names(%s)" },
    } },
    { name = "Time", type = SubMenu, SubMenuItems = {
        { name = "Speed", type = Variable, var_type = Float, get = "speed", set = "set_speed(%.2f)",
          min = 0.25, max = 4, stepsize = 0.25 },
        { name = "Paused", type = Variable, get = "paused", set = "set_paused(%s)" },
    } },
    { name = "Overlays", type = SubMenu, SubMenuItems = {
        { name = "Graphs", type = Variable, get = "statgraph_get_visible()", set = "statgraph_set_visible(%s)" },
        { name = "Render statistics", type = Variable, get = "RenderStats_Get()", set = "RenderStats_Set(%s)" },
        { name = "-", type = Separator },
        { name = "Sort by triangles", type = Command, command = "RenderStats_SortTris()" },
        { name = "Sort by instances", type = Command, command = "RenderStats_SortInstances()" },
    } },
    { name = "Settings", type = SubMenu, SubMenuItems = {
        { name = "Texture detail", type = Variable, var_type = Float, get = "detail", set = "set_detail(%.0f)",
          min = 0, max = 3, stepsize = 1 },
        { name = "Save settings", type = Command, command = "sysconfig_save('SCRATCH:settings.lua')" },
    } },
    { name = "-", type = Separator },
    { name = "Dumps", type = SubMenu, SubMenuItems = {
        { name = "Inventory", type = Command, command = "inv_dump()" },
        { name = "Render statistics", type = Command, command = "RenderStats_DumpToLogFile()" },
    } },
    { name = "Nothing in here", type = SubMenu, SubMenuItems = {} },
}
