-- A camera preset: numbers in "camera", texts in "camera_strings".
camera = {
    distance = 38.5,
    declination = 42,
    orbit = -17.25,
}

camera_strings = {
    title = "Over the shoulder",
    follows = "light_tank",
}
