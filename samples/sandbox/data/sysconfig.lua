-- The game's settings and what each value costs in memory, in megabytes: memoryUsed[1] is the cost of value 0.
-- An option of the same name on the command line, such as -tanks=12 or -shadows, beats the value here.

applicationBaseMemory = 180
d3d10AdditionalMemory = 24
allowableVirtualMemoryUsage = 96

configuration = {
    -- Switches: valueType 1, 0 or 1; a bare option turns them on.
    { setting = "shadows", value = 1, valueType = 1, memoryUsed = { 0, 24 } },
    { setting = "reflections", value = 0, valueType = 1, memoryUsed = { 0, 16.5 } },
    { setting = "vsync", value = 1, valueType = 1 },

    -- Numbers.
    { setting = "tanks", value = 8 },
    { setting = "textureDetail", value = 2, memoryUsed = { 8, 20, 48, 96 } },
    { setting = "viewDistance", value = 1200 },
}
