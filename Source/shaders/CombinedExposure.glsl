// Of the vignette's inside, in percent; plain "exposure" is the whole picture's here.
uniform float vignette_exposure;
