// A panel that slides from the bottom over the dimmed room. What does not fit scrolls, fades out at
// the lower edge and shows a thumb for a second and while it moves. While it is open the room is
// inert and the focus is in here. It is no <dialog>: a modal one would make the page's live regions
// inert too, and nothing that happens behind it would be spoken.

const GLANCE = 1000; // milliseconds for which the thumb is seen

const calm = matchMedia("(prefers-reduced-motion: reduce)");

export class Sheet {
  onOpen = () => {};
  onClose = () => {};
  fold = () => false; // folds what is unfolded in it; false: nothing is

  #room;
  #scroller;
  #thumb;
  #opener = null;
  #watcher = null;
  #glance = 0;

  // `element`: the sheet; `room`: what it shuts off.
  constructor(element, room) {
    this.element = element;
    this.close = this.close.bind(this);
    this.#room = room;
    this.#scroller = element.querySelector(".scroller");
    this.#thumb = element.appendChild(document.createElement("i"));
    this.#thumb.className = "thumb";
    element.inert = true;
    this.closeButton.addEventListener("click", this.close);
    this.#scroller.addEventListener("scroll", () => this.#showThumb(), { passive: true });
    this.#scroller.addEventListener("focusin", ({ target }) => {
      const inside = target !== this.#scroller && target !== this.closeButton;
      if (inside && target.matches(":focus-visible")) this.reveal(target.closest(".row") ?? target);
    });
    const follow = new ResizeObserver(() => this.#follow());
    for (const part of this.#scroller.children) follow.observe(part);
    follow.observe(this.#scroller);
  }

  get isOpen() {
    return !this.element.inert;
  }

  get closeButton() {
    return this.element.querySelector(".close");
  }

  // `opener` gets the focus back. Who came by the keyboard goes on with the first control.
  open(opener) {
    this.#opener = opener;
    this.#turn(true);
    this.#scroller.scrollTop = 0;
    const first = opener.matches(":focus-visible") ? this.closeButton : this.#scroller;
    first.focus({ preventScroll: true });
    this.#showThumb();
    this.#watchBack();
    this.onOpen();
  }

  close() {
    if (!this.isOpen) return;
    this.#turn(false);
    this.#watcher?.destroy();
    this.#opener.focus({ preventScroll: true });
    this.onClose();
  }

  // Scrolls as little as it takes to show all of the element between the strip with the close button
  // and where the content fades; its top, if it is higher than that.
  reveal(element) {
    const area = this.#scroller.getBoundingClientRect();
    const { top, bottom } = element.getBoundingClientRect();
    const above = top - area.top - this.#strip - 8;
    const below = bottom - area.bottom + this.#fade;
    const distance = Math.min(above, Math.max(0, below));
    this.#scroller.scrollBy({ top: distance, behavior: calm.matches ? "auto" : "smooth" });
  }

  get #strip() {
    return this.closeButton.parentElement.offsetHeight;
  }

  get #fade() {
    return parseFloat(getComputedStyle(this.element, "::after").height) || 0;
  }

  #turn(open) {
    this.element.inert = !open;
    this.#room.inert = open;
    this.element.toggleAttribute("data-open", open);
    this.element.parentElement.toggleAttribute("data-open", open);
  }

  // The back gesture of a phone closes the sheet rather than the page, where browsers offer that.
  #watchBack() {
    if (!globalThis.CloseWatcher) return;
    this.#watcher = new CloseWatcher();
    this.#watcher.onclose = this.close;
  }

  #follow() {
    const { scrollTop, scrollHeight, clientHeight } = this.#scroller;
    this.element.toggleAttribute("data-scrolled", scrollTop > 0);
    this.element.toggleAttribute("data-more", scrollTop + clientHeight < scrollHeight - 1);
    const track = clientHeight - this.#strip - 20;
    this.#thumb.style.top = `${this.#strip + 8 + (track * scrollTop) / scrollHeight}px`;
    this.#thumb.style.height = `${(track * clientHeight) / scrollHeight}px`;
    return scrollHeight > clientHeight + 1;
  }

  #showThumb() {
    clearTimeout(this.#glance);
    this.#thumb.toggleAttribute("data-shown", this.#follow());
    this.#glance = setTimeout(() => this.#thumb.removeAttribute("data-shown"), GLANCE);
  }
}
