// The live updates of all shown players over one connection. Read with fetch, not EventSource, so that the token goes
// as a header and a refusal can be told from a server that has gone. A connection that breaks is taken up again.
import { call } from "/api.js";

const firstpause = 300, longestpause = 5000;

// Cuts event-stream text, in whatever pieces it comes, into { event, data }.
export function* events(pending) {
  for (let end; (end = pending.text.indexOf("\n\n")) >= 0; ) {
    const block = pending.text.slice(0, end);
    pending.text = pending.text.slice(end + 2);
    let event = "message", data = "";
    for (const line of block.split("\n")) {
      if (line.startsWith("event: ")) event = line.slice(7);
      else if (line.startsWith("data: ")) data += line.slice(6);
    }
    if (data !== "") yield { event, data: JSON.parse(data) };
  }
}

export class Stream {
  // on.event(event, data), on.state("live" | "lost" | "full" | "refused")
  constructor(on) {
    this.on = on;
    this.query = null;
    this.received = 0;  // characters, for the measurement
    this.current = null;
  }

  // `query()` makes the parameters anew for each connection, so that it goes on where the last one ended.
  open(query) {
    this.current?.abort();
    this.current = new AbortController();
    this.run(query, this.current.signal);
  }

  async run(query, signal) {
    let pause = firstpause;
    while (!signal.aborted) {
      let state = "lost";
      try {
        const response = await call("GET", `/api/events?${query()}`, undefined, { raw: true, signal });
        pause = firstpause;
        this.on.state("live");
        await this.read(response.body.pipeThrough(new TextDecoderStream()).getReader(), signal);
      } catch (error) {
        if (signal.aborted) return;
        if (error.status === 401 || error.status === 403) return this.on.state("refused");
        if (error.status === 503) state = "full";
        if (error.status === undefined) console.error(error);
      }
      if (signal.aborted) return;
      this.on.state(state);
      await new Promise((wake) => setTimeout(wake, pause));
      pause = Math.min(pause * 2, longestpause);
    }
  }

  async read(reader, signal) {
    const pending = { text: "" };
    for (;;) {
      const { value, done } = await reader.read();
      if (done || signal.aborted) return;
      this.received += value.length;
      pending.text += value;
      for (const { event, data } of events(pending)) this.on.event(event, data);
    }
  }
}
