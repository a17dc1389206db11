// The service's stream of events, for as long as it is wanted: read with fetch, which tells, unlike EventSource,
// why a connection was refused, and when the heartbeat stays away.
const silence = 60_000; // longer than two heartbeats
const gracePeriod = 1_500; // before a lost connection is worth a word
const longestPause = 15_000;

export function listen({ event, connected, lost, refused }) {
  let ended = false;
  let abort = new AbortController();
  let lastWord = 0;
  let wake = () => {};
  let word = null; // the timer of "lost"

  const pause = (milliseconds) => new Promise((done) => {
    const timer = setTimeout(done, milliseconds);
    wake = () => { clearTimeout(timer); done(); };
  });

  async function stream() {
    abort = new AbortController();
    lastWord = Date.now();
    const reply = await fetch("phone/events", { signal: abort.signal, cache: "no-store" });
    if (reply.status === 401) return "refused";
    if (!reply.ok) throw new Error(String(reply.status));
    clearTimeout(word);
    word = null;
    connected();
    let after = null;
    for await (const [name, data] of eventsOf(reply.body, () => { lastWord = Date.now(); })) {
      if (ended) return null;
      if (name === "restart") after = data.after;
      else event(name, data);
    }
    return after;
  }

  async function run() {
    for (let failures = 0; !ended;) {
      let wait = null;
      const began = Date.now();
      try {
        wait = await stream();
        if (wait === "refused") return ended || refused();
      } catch {
        // as good as an end
      }
      if (ended) return;
      word ??= setTimeout(lost, gracePeriod);
      failures = Date.now() - began > 5_000 ? 0 : failures + 1;
      await pause(wait ?? Math.min(longestPause, 250 * 2 ** failures) * (0.75 + Math.random() / 2));
    }
  }

  // A phone that slept, or changed its network, may hold a connection that no longer is one.
  const doubt = (longest) => {
    if (document.visibilityState === "hidden") return;
    if (Date.now() - lastWord > longest) abort.abort();
    wake();
  };
  const watch = setInterval(() => doubt(silence), 5_000);
  const wakes = {
    online: () => doubt(0),
    offline: () => { abort.abort(); lost(); },
    pageshow: () => doubt(30_000),
    focus: () => doubt(30_000),
  };
  const seen = () => doubt(30_000);
  for (const [name, handler] of Object.entries(wakes)) addEventListener(name, handler);
  document.addEventListener("visibilitychange", seen);

  run();
  return () => {
    ended = true;
    clearInterval(watch);
    clearTimeout(word);
    for (const [name, handler] of Object.entries(wakes)) removeEventListener(name, handler);
    document.removeEventListener("visibilitychange", seen);
    abort.abort();
    wake();
  };
}

// Server-sent events, each as its name and its data. A comment is only a word.
async function* eventsOf(stream, heard) {
  const reader = stream.pipeThrough(new TextDecoderStream()).getReader();
  let text = "";
  for (;;) {
    const { value, done } = await reader.read();
    if (done) return;
    heard();
    text += value;
    const blocks = text.split("\n\n");
    text = blocks.pop();
    for (const block of blocks) {
      const field = (name) => block.split("\n").find((line) => line.startsWith(`${name}: `))?.slice(name.length + 2);
      if (field("event")) yield [field("event"), JSON.parse(field("data") ?? "{}")];
    }
  }
}
