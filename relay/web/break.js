// The break's ring and time, with the screen kept awake and a word for the hand at its start and end.
const ringSide = 240;
const halfPixel = 0.5;

export function clockText(seconds) {
  const two = (number) => String(number).padStart(2, "0");
  const hours = Math.floor(seconds / 3600);
  const minutes = Math.floor(seconds / 60) % 60;
  return hours ? `${hours}:${two(minutes)}:${two(seconds % 60)}` : `${minutes}:${two(seconds % 60)}`;
}

export class BreakView {
  #current = null;
  #drawn = -1;
  #frame = 0;
  #lock = null;

  constructor(title, arc, time, ended) {
    Object.assign(this, { title, arc, time, ended });
    document.addEventListener("visibilitychange", () => this.#keepAwake());
  }

  begin({ title, seconds, endsAt, now }) {
    const isNew = !this.#current || Math.abs(this.#current.serverEnd - endsAt) > 0;
    this.#current = { seconds, serverEnd: endsAt, end: Date.now() + (endsAt - now) };
    this.title.textContent = title;
    this.title.parentElement.setAttribute("aria-label", title); // not in capitals, as it is shown
    this.#drawn = -1;
    cancelAnimationFrame(this.#frame);
    this.#draw();
    this.#keepAwake();
    if (isNew) this.#vibrate([80]);
  }

  /** Whether there was a break to end. */
  end() {
    if (!this.#current) return false;
    this.#current = null;
    cancelAnimationFrame(this.#frame);
    document.title = "Pavonel";
    this.#lock?.release().catch(() => {});
    this.#lock = null;
    this.#vibrate([60, 80, 60]);
    this.ended();
    return true;
  }

  // In steps of half a pixel, as the eye sees no finer; in steps of a second where motion is unwelcome.
  #draw() {
    const left = (this.#current.end - Date.now()) / 1000;
    if (left <= 0) return this.end();
    const shown = Math.ceil(left);
    const text = clockText(shown);
    if (this.time.textContent !== text) {
      this.time.textContent = text;
      this.time.toggleAttribute("data-long", text.length > 5);
      document.title = `${text} · ${this.title.textContent}`;
    }
    const calm = matchMedia("(prefers-reduced-motion: reduce)").matches;
    const over = 1 - (calm ? shown : left) / Math.max(this.#current.seconds, 1);
    const step = halfPixel / (Math.PI * ringSide * devicePixelRatio);
    if (Math.abs(over - this.#drawn) >= step) {
      this.#drawn = over;
      this.arc.style.strokeDasharray = `${Math.min(Math.max(over, 0), 1)} 1`;
      this.arc.style.visibility = over > step ? "visible" : "hidden"; // no dot at twelve o'clock
    }
    this.#frame = requestAnimationFrame(() => this.#draw());
  }

  async #keepAwake() {
    if (!this.#current || document.visibilityState !== "visible" || !navigator.wakeLock) return;
    try {
      const lock = await navigator.wakeLock.request("screen");
      if (this.#current && (!this.#lock || this.#lock.released)) this.#lock = lock;
      else await lock.release(); // the break is over, or another one asked meanwhile
    } catch {
      // the battery may be low
    }
  }

  #vibrate(pattern) {
    if (navigator.userActivation?.hasBeenActive) navigator.vibrate?.(pattern);
  }
}
