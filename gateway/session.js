// One client, from its first packet to its last: logged in by the library, started here, and then a pair of ends through
// which packets pass as they are. A client that does not read is closed: from time to time it is asked for an echo, and
// what it has been sent since the last one is bounded.
import { Player, protocol, varint, version } from "./library.js";
import { chunkradius, commandpacket, openedpackets, packs, readypackets, stack, startpackets } from "./start.js";

const patience = { login: 20_000, echo: 20_000 };  // milliseconds
const mostunread = 4 << 20, betweenechoes = 64 << 10;  // bytes

// The packets of a client, by number: what the library and the start need, and what the server deals with.
const heard = new Set([1, 4, 8, 23, 69, 113, 115, 193]);
const forwarded = new Set([9, 31, 47, 77, 101, 147]);

export class Session {
  #stage = "login";  // starting, opening, playing, over
  #echoes = [];  // bytes sent before each that was asked for
  #unread = 0;
  #sinceecho = 0;
  #stacktold = false;

  constructor(player, { door, sessions }) {
    Object.assign(this, { player, door, sessions });
    this.library = player.readPacket.bind(player);
    player.compressionThreshold = Infinity;
    const settings = player.sendNetworkSettings.bind(player);
    player.sendNetworkSettings = () => {
      settings();
      player.compressionThreshold = 0;  // from then on a client inflates every batch, also a short one
    };
    player.readPacket = (bytes) => this.#receive(bytes);
    player.handleClientProtocolVersion = (theirs) => this.#speaks(theirs);
    player.rejectLogin = (error) => this.#reject(error);
    player.on("error", (error) => this.end(error.message));
    player.on("close", () => this.#gone(""));
    player.on("join", () => this.#joined());
    player.on("resource_pack_client_response", ({ response_status }) => this.#packsanswered(response_status));
    player.on("request_chunk_radius", () => this.#write([chunkradius]));
    player.on("tick_sync", ({ request_time }) => this.#write([["tick_sync", { request_time, response_time: request_time }]]));
    player.on("network_stack_latency", () => this.#echoed());
    player.on("spawn", () => this.#initialised());
    this.timer = setTimeout(() => this.end("joining took too long"), patience.login);
  }

  get name() {
    return this.player.profile?.name ?? this.player.connection.address;
  }

  // ---- from the client

  // A batch as it came. What is no batch ends the client that sent it, and nothing else.
  batch(bytes) {
    if (this.#stage === "over") return;
    try {
      this.player.handle(bytes);
    } catch (error) {
      this.end(`what your client sent was broken: ${error.message}`);
    }
  }

  #receive(bytes) {
    const number = varint(bytes, 0)[0] & 0x3ff;
    if (forwarded.has(number)) {
      if (this.#stage === "playing" && !this.door.packet(this.number, bytes)) this.end("too much at once");
    } else if (heard.has(number) && this.#stage !== "over") {
      this.library(bytes);
    }
  }

  #speaks(theirs) {
    if (theirs === protocol) return true;
    const age = theirs > protocol ? "newer" : "older";
    this.#farewell(`This server speaks Minecraft ${version}. Your game is ${age}: please join with ${version}.`, theirs);
    return false;
  }

  #reject(error) {
    if (!this.player.loginState.reject()) return;
    const unsigned = /Offline login|Self-signed|not anchored/.test(error.message);
    this.end(unsigned ? "Please sign in: this server lets in only players whom Xbox Live knows." : `Your login was not accepted: ${error.message}`);
  }

  #joined() {
    if (!this.door.ready) return this.end("The market is not running just now; come back in a moment.");
    this.#stage = "starting";
    this.#write([packs]);
  }

  // The game's own client has all packs, is told their order, and has completed; others complete at once, and again.
  #packsanswered(status) {
    if (this.#stage !== "starting" || status === "none") return;
    if (status === "refused") return this.end("");
    if (!this.#stacktold) {
      this.#stacktold = true;
      return this.#write([stack(version)]);
    }
    if (status !== "completed" || this.started) return;
    this.started = true;
    if (!this.door.ready) return this.closed("the market's server has gone; come back in a moment");
    this.#write(startpackets(this.door.hello));
    for (const packet of this.door.start) this.packet(packet);
    this.#write([commandpacket(this.door.commands, 0), ...readypackets()]);
  }

  #initialised() {
    if (this.#stage !== "starting" || !this.started) return;
    if (!this.door.ready) return this.closed("the market's server has gone; come back in a moment");
    clearTimeout(this.timer);
    const { profile, skinData: told, authentication } = this.player;
    const { authenticated } = authentication;
    const device = Number.isInteger(told.DeviceOS) && told.DeviceOS > 0 ? told.DeviceOS : 7;
    const language = /^[a-z]{2,3}_[A-Z]{2}$/.test(told.LanguageCode) ? told.LanguageCode : "en_US";
    // Whose game broke off comes back sooner than RakNet notices; names that are only said give nobody that right.
    if (authenticated)
      for (const other of [...this.sessions.values()])
        if (other !== this && other.xuid === profile.xuid) other.end("You have joined from another place.");
    this.xuid = authenticated ? profile.xuid : undefined;
    this.#stage = "opening";
    this.number = this.door.open({ name: profile.name, xuid: this.xuid ?? "", language, device, authenticated }, this);
  }

  // ---- from the server, as the door's hearer

  opened(told) {
    if (this.#stage !== "opening") return;
    this.#stage = "playing";
    this.permission = told.permission;
    this.#write(openedpackets(told));
    this.commands();
  }

  commands() {
    if (this.#stage === "playing") this.#write([commandpacket(this.door.commands, this.permission)]);
  }

  packet(bytes) {
    if (this.#stage === "over") return this;
    this.player.sendBuffer(bytes);
    this.#unread += bytes.length;
    this.#sinceecho += bytes.length;
    if (this.#unread > mostunread) this.end("your client does not read what it is sent");
    return this;
  }

  flush() {
    if (this.#stage === "over") return;
    if (this.#sinceecho > 0 && (this.#sinceecho >= betweenechoes || this.#echoes.length === 0)) {
      if (this.#echoes.length === 0) this.#hurry();
      this.#echoes.push(this.#sinceecho);
      this.#sinceecho = 0;
      this.player.queue("network_stack_latency", { timestamp: BigInt(Date.now()), needs_response: 1 });
    }
    this.player.onTick();
  }

  closed(reason) {
    this.number = undefined;
    this.end(reason);
  }

  // ---- the end

  // The reason is shown to the player; an empty one is none.
  end(reason) {
    if (this.#stage === "over") return;
    this.flush();
    this.#farewell(reason);
  }

  #farewell(reason, theirs = protocol) {
    if (this.#stage === "over") return;
    this.#gone(reason);
    if (reason) this.player.sendBuffer(goodbye(reason, theirs), true);
    setTimeout(() => this.player.close("ended"), 200).unref();
  }

  #gone(reason) {
    if (this.#stage === "over") return;
    this.#stage = "over";
    clearTimeout(this.timer);
    clearTimeout(this.echotimer);
    if (this.number !== undefined) this.door.close(this.number, reason);
    this.number = undefined;
  }

  #write(packets) {
    for (const [name, told] of packets) this.player.queue(name, told);
    this.flush();
  }

  #echoed() {
    if (this.#echoes.length === 0) return;
    this.#unread -= this.#echoes.shift();
    if (this.#echoes.length) this.#hurry();
    else clearTimeout(this.echotimer);
  }

  #hurry() {
    clearTimeout(this.echotimer);
    this.echotimer = setTimeout(() => this.end("your client does not answer"), patience.echo);
  }
}

// The packet that ends a game, as the client's own version reads it.
function goodbye(reason, theirs) {
  const text = (words) => {
    const bytes = Buffer.from(words), length = [];
    for (let rest = bytes.length; length.push(rest > 127 ? (rest & 127) | 128 : rest), rest > 127;) rest >>>= 7;
    return Buffer.concat([Buffer.from(length), bytes]);
  };
  const kind = theirs >= 622 ? [Buffer.of(0)] : [], filtered = theirs >= 712 ? [text(reason)] : [];
  return Buffer.concat([Buffer.of(5), ...kind, Buffer.of(0), text(reason), ...filtered]);
}
