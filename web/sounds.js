// The sounds that a client is told to play, made here: a few voices, chosen by the sound's name. Silent until switched
// on, as browsers and colleagues prefer it.
import { remember, remembered } from "/settings.js";

let on = remembered("sound", false);
let context = null;

export const audible = () => on;

export function setaudible(value) {
  on = value;
  remember("sound", value);
}

function tone(audio, type, from, to, start, length, loudness) {
  const source = audio.createOscillator(), gain = audio.createGain(), begin = audio.currentTime + start;
  source.type = type;
  source.frequency.setValueAtTime(from, begin);
  source.frequency.exponentialRampToValueAtTime(to, begin + length);
  gain.gain.setValueAtTime(0.0001, begin);
  gain.gain.exponentialRampToValueAtTime(loudness, begin + 0.01);
  gain.gain.exponentialRampToValueAtTime(0.0001, begin + length);
  source.connect(gain).connect(audio.destination);
  source.start(begin);
  source.stop(begin + length);
}

function rustle(audio, length, loudness, pitch) {
  const frames = Math.floor(audio.sampleRate * length);
  const buffer = audio.createBuffer(1, frames, audio.sampleRate), data = buffer.getChannelData(0);
  for (let i = 0; i < frames; ++i) data[i] = (Math.random() * 2 - 1) * Math.sin((Math.PI * i) / frames);
  const source = audio.createBufferSource(), filter = audio.createBiquadFilter(), gain = audio.createGain();
  source.buffer = buffer;
  filter.type = "bandpass";
  filter.frequency.value = 2600 * pitch;
  gain.gain.value = loudness;
  source.connect(filter).connect(gain).connect(audio.destination);
  source.start();
}

const voices = [
  [/page_turn|paper/, (audio, p, v) => rustle(audio, 0.22, 0.5 * v, p)],
  [/levelup/, (audio, p, v) => [523, 659, 784, 1047].forEach((f, i) => tone(audio, "triangle", f * p, f * p, i * 0.07, 0.25, 0.22 * v))],
  [/villager\.no|deny|error/, (audio, p, v) => { tone(audio, "sawtooth", 230 * p, 190 * p, 0, 0.16, 0.1 * v); tone(audio, "sawtooth", 180 * p, 140 * p, 0.17, 0.22, 0.1 * v); }],
  [/villager\.yes/, (audio, p, v) => { tone(audio, "sawtooth", 190 * p, 230 * p, 0, 0.13, 0.1 * v); tone(audio, "sawtooth", 240 * p, 300 * p, 0.14, 0.18, 0.1 * v); }],
  [/villager|mob\./, (audio, p, v) => tone(audio, "sawtooth", 200 * p, 250 * p, 0, 0.3, 0.1 * v)],
  [/orb|pling|bell|note\./, (audio, p, v) => tone(audio, "sine", 1175 * p, 1175 * p, 0, 0.4, 0.2 * v)],
  [/click|button/, (audio, p, v) => tone(audio, "square", 1400 * p, 500 * p, 0, 0.035, 0.1 * v)],
  [/./, (audio, p, v) => tone(audio, "triangle", 440 * p, 330 * p, 0, 0.12, 0.15 * v)],
];

export function play(name, volume, pitch) {
  if (!on) return;
  context ??= new AudioContext();
  if (context.state === "suspended") context.resume();
  const high = Math.min(Math.max(pitch || 1, 0.25), 4), loud = Math.min(Math.max(volume, 0), 1);
  if (loud > 0) voices.find(([pattern]) => pattern.test(name))[1](context, high, loud);
}
