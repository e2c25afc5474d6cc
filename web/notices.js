// What the page has to say itself: a call that failed, something that was done.
import { h } from "/dom.js";
import { t } from "/strings.js";

const time = 6000;
const place = h("div", { class: "notices", role: "alert" });

export function notice(what) {
  const failed = what instanceof Error;
  const why = failed && what.status === 0 ? t("unreached") : what.message;
  const box = h("div", { class: failed ? "notice bad" : "notice" }, failed ? t("failed", { why }) : what);
  if (!place.isConnected) (document.querySelector("main") ?? document.body).append(place);
  place.append(box);
  setTimeout(() => box.remove(), time);
}
