// Lays "after" over "before", with a slider between them that is dragged or moved by keyboard. Without
// this the two stand side by side.
"use strict";

for (const figure of document.querySelectorAll(".compare")) {
    const pictures = figure.querySelector(".compare-pictures");
    const slider = document.createElement("input");
    slider.type = "range";
    slider.min = "0";
    slider.max = "100";
    slider.value = "50";
    slider.setAttribute("aria-label", "How much of the picture is shown as it was before");
    const show = () => {
        pictures.style.setProperty("--before", `${slider.value}%`);
        slider.setAttribute("aria-valuetext", `${slider.value} % before`);
    };
    slider.addEventListener("input", show);
    pictures.append(slider);
    figure.classList.add("compare-live");
    show();
}
