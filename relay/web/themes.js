// The colours of the computer's break screen. Which of them the computer shows does not travel, so one chooses.
const themes = [
  ["Night", "#0d1221", "#1a213d"],
  ["Dusk", "#291c47", "#632e54"],
  ["Forest", "#0a2924", "#144a3d"],
  ["Ocean", "#08243d", "#0d4f6b"],
  ["Sand", "#422e1f", "#734f30"],
  ["Plain black", "#000000", "#000000"],
];
const chosen = "theme";

function paint(style, [, first, last]) {
  style.setProperty("--first", first);
  style.setProperty("--last", last);
}

export function offerThemes(place) {
  const current = themes.find(([name]) => name === localStorage.getItem(chosen)) ?? themes[0];
  paint(document.documentElement.style, current);
  for (const theme of themes) {
    const label = document.createElement("label");
    const input = Object.assign(document.createElement("input"), { type: "radio", name: "theme", checked: theme === current });
    input.setAttribute("aria-label", theme[0]);
    const swatch = document.createElement("span");
    paint(swatch.style, theme);
    input.addEventListener("change", () => {
      localStorage.setItem(chosen, theme[0]);
      paint(document.documentElement.style, theme);
    });
    label.append(input, swatch);
    place.append(label);
  }
}
