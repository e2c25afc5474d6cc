// One view: its query, its answer as figures, rows or a picture with its numbers, and what may be done to a row.
import * as api from "/api.js";
import { confirmedtext } from "/confirm.js";
import { Plot } from "/deskplot.js";
import { commandof, isnumeric, queryform, said, sentenceof, shown } from "/deskvalues.js";
import { h } from "/dom.js";
import { Outcome } from "/opparts.js";
import { t } from "/strings.js";

export class View {
  // `context`: players() as last read, actor() who runs commands, "" for nobody.
  constructor(description, context) {
    this.description = description;
    this.context = context;
    this.columns = description.columns ?? [];
    this.asked = {};
    this.outcome = new Outcome();
    this.content = h("div", { class: "deskcontent" });
    this.note = h("p", { class: "hint" });
    this.more = h("button", { type: "button", t: "deskmore", hidden: true, on: { click: () => this.goon() } });
    this.formplace = h("div", {});
    this.title = h("h3", { tabindex: -1 });
    this.about = h("p", { class: "hint" });
    this.element = h("section", { class: "deskview", "data-view": description.name }, this.title, this.about, this.formplace, this.outcome.element, this.content, this.more, this.note);
    this.relabel();
  }

  relabel() {
    const { title, about } = this.description;
    this.title.textContent = said(title);
    this.about.textContent = said(about);
    const form = queryform(this.description, this.asked, this.context.players, (values) => this.ask(values));
    this.formplace.replaceChildren(...(form ? [form] : []));
    if (this.answer) this.draw();
  }

  isready() {
    return (this.description.query ?? []).every(({ name, required }) => !required || this.asked[name]);
  }

  show() {
    clearInterval(this.timer);
    this.outcome.tell("", false);
    if (this.isready()) this.refresh();
    else this.outcome.tell(t("deskfill"), false);
    const { refresh } = this.description;
    if (refresh) this.timer = setInterval(() => document.hidden || this.refresh(), refresh * 1000);
  }

  hide() {
    clearInterval(this.timer);
    this.plot?.end();
    this.plot = null;
    this.text = "";
  }

  ask(values) {
    this.asked = values;
    this.outcome.tell("", false);
    return this.refresh();
  }

  // The newest question is the one that is answered. What came of an action stays to be read while the view goes on.
  async refresh() {
    const number = (this.number = (this.number ?? 0) + 1);
    try {
      const answer = await api.view(this.description.name, this.asked);
      if (number !== this.number) return;
      if (this.refused) this.outcome.tell("", false);
      this.refused = false;
      const text = JSON.stringify(answer);
      if (text === this.text) return;
      this.text = text;
      this.answer = answer;
      this.draw();
    } catch (error) {
      if (number !== this.number) return;
      this.refused = true;
      this.outcome.tell(error.message, true);
    }
  }

  async goon() {
    await this.outcome.of(async () => {
      const { rows, next } = await api.view(this.description.name, { ...this.asked, ...this.answer.next });
      this.answer = { ...this.answer, rows: [...this.answer.rows, ...rows], next };
      this.text = "";
      this.draw();
    });
  }

  draw() {
    const { kind } = this.description, { rows, note, next } = this.answer;
    const scrolled = this.content.querySelector(".desktable")?.scrollTop ?? 0;
    const focused = this.content.contains(document.activeElement) ? document.activeElement.dataset.key : null;
    if (kind === "figures") this.content.replaceChildren(figures(rows));
    else if (kind === "series") this.drawseries(rows);
    else this.content.replaceChildren(this.table(rows));
    if (scrolled > 0) this.content.querySelector(".desktable")?.scrollTo({ top: scrolled });
    this.note.textContent = said(note);
    this.more.hidden = !next;
    if (focused) this.content.querySelector(`[data-key="${CSS.escape(focused)}"]`)?.focus();
  }

  drawseries(rows) {
    if (rows.length === 0) {
      this.plot?.end();
      this.plot = null;
      return this.content.replaceChildren(this.table(rows));
    }
    this.plot ??= new Plot(said(this.description.title));
    this.content.replaceChildren(h("div", { class: "series" }, this.plot.element, this.table([...rows].reverse())));
    this.plot.draw(this.columns, rows).catch((error) => this.outcome.tell(error.message, true));
  }

  table(rows) {
    if (rows.length === 0) return h("p", { class: "hint", t: "deskempty" });
    const { actions = [], kind } = this.description;
    // What no row has takes no room; days without a value stay days.
    const has = ({ name }) => kind === "series" || rows.some((row) => row[name] !== undefined && row[name] !== null);
    const columns = this.columns.filter((column) => column.title !== undefined && has(column));
    const heads = columns.map((column) => h("th", { scope: "col", class: isnumeric(column) ? "number" : null }, said(column.title)));
    if (actions.length > 0) heads.push(h("th", { scope: "col", t: "doing" }));
    const body = rows.map((row, place) => h("tr", {}, ...columns.map((column) => h("td", { class: isnumeric(column) ? "number" : null }, shown(row[column.name], column) || (kind === "series" ? "–" : ""))),
      actions.length > 0 ? h("td", {}, ...actions.filter(({ when }) => !when || row[when]).map((action) => this.button(action, row, place))) : null));
    return h("div", { class: "desktable", tabindex: 0, role: "region", "aria-label": said(this.description.title) },
      h("table", {}, h("thead", {}, h("tr", {}, ...heads)), h("tbody", {}, ...body)));
  }

  button(action, row) {
    const key = commandof(action.command, row);
    return h("button", { type: "button", class: "quiet", "data-key": key, on: { click: () => this.act(action, row) } }, said(action.title));
  }

  async act(action, row) {
    const name = this.context.actor();
    if (name === "") return this.outcome.tell(t("desknobody"), true);
    const line = commandof(action.command, row);
    if (!(await confirmedtext(`${sentenceof(action.confirm ?? action.title, row, this.columns)}\n${t("deskruns", { name, line })}`, said(action.title)))) return;
    try {
      const before = Math.max(0, ...(await api.look(name)).heard.map((one) => one.number));
      await api.command(name, line);
      const replies = (await api.heard(name, before)).filter(({ kind }) => kind === "reply");
      await this.refresh();
      this.refused = false;
      const told = replies.map(({ text }) => text.replace(/§./g, "")).join("\n");
      this.outcome.tell(told || t((await api.server()).paused ? "allwaits" : "deskdone"), replies.some(({ success }) => !success));
    } catch (error) {
      this.outcome.tell(error.message, true);
    }
  }
}

function figures(rows) {
  return h("dl", { class: "figures" }, ...rows.map((row) => h("div", { class: row.bad ? "bad" : null },
    h("dt", {}, said(row.title)), h("dd", {}, row.bad ? `⚠ ${shown(row.value, row)}` : shown(row.value, row)))));
}
