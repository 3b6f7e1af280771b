applicationBaseMemory = 180
configuration = {
    { setting = "textureDetail", value = 2, memoryUsed = { 8, 20, 48, 96 } },
    { setting = "shadows", value = 1, valueType = 1 },
}
