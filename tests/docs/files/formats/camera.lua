camera = {
	distance = 38.5,
	orbit = -17.25,
}
camera_strings = {
	title = "Wide \"view\"",
}
