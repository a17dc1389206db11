// What is shown: the code's form, the calm page, or the break. What is known comes from the service alone.
import { BreakView } from "./break.js";
import { listen } from "./events.js";
import { offerThemes } from "./themes.js";

const element = (id) => document.getElementById(id);
const body = document.body;
const pairedBefore = "paired"; // only for what to show while the service cannot be reached

let stopListening = () => {};

function say(sentence) {
  element("news").textContent = sentence;
}

function show(screen) {
  body.dataset.screen = screen;
  const dark = matchMedia("(prefers-color-scheme: dark)").matches;
  const colour = screen === "break" ? getComputedStyle(body).getPropertyValue("--first") : dark ? "#1c1c1e" : "#f3f3f5";
  document.querySelector("meta[name=theme-color]").content = colour.trim();
}

const view = new BreakView(element("break-title"), element("arc"), element("time"), () => {
  show("waiting");
  say("The break is over.");
});

function showConnection(state) {
  if (body.dataset.connection === state) return;
  body.dataset.connection = state;
  if (state === "lost") say("No connection. Trying again.");
}

function unpaired(sentence = "") {
  stopListening();
  localStorage.removeItem(pairedBefore);
  view.end();
  showConnection("none");
  element("sure").close();
  show("pair");
  element("code-error").textContent = sentence;
}

const receive = {
  break(current) {
    show("break");
    view.begin(current);
    const length = current.seconds < 100 ? `${current.seconds} seconds` : `${Math.round(current.seconds / 60)} minutes`;
    say(`${current.title}, ${length}.`);
  },
  clear() {
    if (!view.end()) show("waiting");
  },
  unpaired() {
    unpaired("The pairing was ended.");
  },
};

function connect() {
  stopListening();
  stopListening = listen({
    event: (name, data) => receive[name]?.(data),
    connected: () => {
      localStorage.setItem(pairedBefore, "yes");
      showConnection("good");
    },
    lost: () => showConnection("lost"),
    refused: () => unpaired(),
  });
}

const refusals = {
  404: "That code is wrong, used or too old.",
  429: "Too many wrong codes. Try again in a quarter of an hour.",
};

async function pair(event) {
  event.preventDefault();
  const button = element("code-form").querySelector("button");
  const error = element("code-error");
  const code = element("code").value.replace(/[\s-]/g, "");
  error.textContent = code.length === 6 ? "" : "A code has six characters.";
  if (code.length !== 6) return element("code").focus();
  button.disabled = true;
  try {
    const reply = await fetch("phone/pair", {
      method: "POST",
      headers: { "Content-Type": "application/json" },
      body: JSON.stringify({ code }),
    });
    if (reply.ok) {
      element("code").value = "";
      history.replaceState(null, "", location.pathname);
      say("Paired.");
      show("waiting");
      connect();
    } else {
      error.textContent = refusals[reply.status] ?? "The service said no. Try again.";
    }
  } catch {
    error.textContent = "No connection. Try again.";
  }
  button.disabled = false;
}

async function leave() {
  element("sure").close();
  try {
    const reply = await fetch("phone/pair", { method: "DELETE" });
    if (reply.ok || reply.status === 401) return unpaired();
  } catch {
    // said below
  }
  showConnection("lost");
}

function takeCodeFromAddress() {
  const code = decodeURIComponent(location.hash.slice(1)).slice(0, 9);
  if (/^[0-9A-Za-z]{6}$/.test(code)) element("code").value = code.toUpperCase();
}

element("code-form").addEventListener("submit", pair);
element("disconnect").addEventListener("click", () => element("sure").showModal());
element("stay").addEventListener("click", () => element("sure").close());
element("leave").addEventListener("click", leave);
addEventListener("hashchange", takeCodeFromAddress);
takeCodeFromAddress();
offerThemes(element("themes"));
show(localStorage.getItem(pairedBefore) ? "waiting" : "pair");
connect();
navigator.serviceWorker?.register("worker.js").catch(() => {}); // without one, the page needs the network
