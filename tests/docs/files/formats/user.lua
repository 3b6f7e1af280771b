configuration = {
	[1] = {
		setting = "shadows",
		value = 1,
		valueType = 1,
	},
	[2] = {
		setting = "texturedetail",
		value = 3,
		valueType = 2,
	},
}
version = 1007
