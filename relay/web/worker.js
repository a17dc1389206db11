// Shows the page where there is no network. Nothing but the page's own files is ever kept.
const store = "pavonel";
const files = ["./", "style.css", "page.js", "events.js", "break.js", "themes.js", "icon.svg", "icon-192.png",
  "manifest.webmanifest", "inter-text.woff2", "inter-digits.woff2"];

addEventListener("install", (event) => {
  event.waitUntil(caches.open(store).then((cache) => cache.addAll(files)).then(() => self.skipWaiting()));
});
addEventListener("activate", (event) => event.waitUntil(self.clients.claim()));

const kept = new Set(files.map((file) => new URL(file, self.registration.scope).pathname));

async function answer(request) {
  const cache = await caches.open(store);
  try {
    const reply = await fetch(request);
    if (reply.ok) await cache.put(request.mode === "navigate" ? "./" : request, reply.clone());
    return reply;
  } catch (error) {
    const old = await cache.match(request.mode === "navigate" ? "./" : request);
    if (old) return old;
    throw error;
  }
}

addEventListener("fetch", (event) => {
  if (event.request.method === "GET" && kept.has(new URL(event.request.url).pathname)) {
    event.respondWith(answer(event.request));
  }
});
