#!/usr/bin/env python3
"""Makes the bundled stock pool in examples/data/pool from the one real daily stock file.

The pool holds the real ORCL bars of 2012-2014 and five series generated from them: each
resamples the daily moves of ORCL's 1995-2014 history (a day's close-to-close change together
with its open, high and low relative to that close) in blocks of 5 days, over the same dates,
and leaves out about one date in a hundred so that the pool has missing bars. The generated
series are named "resampled" and are not market data.
"""
import csv
import math
import os
import random

HERE = os.path.dirname(os.path.abspath(__file__))
SOURCE = os.path.join(HERE, "..", "examples", "data", "orcl-1995-2014.txt")
POOL = os.path.join(HERE, "..", "examples", "data", "pool")
FIRST = "2012-01-01"
BLOCK = 5


def read(path):
    with open(path, newline="") as f:
        rows = list(csv.DictReader(f))
    return [(r["Date"], float(r["Open"]), float(r["High"]), float(r["Low"]), float(r["Close"]),
             int(float(r["Volume"]))) for r in rows]


def write(path, bars):
    with open(path, "w", newline="") as f:
        f.write("Date,Open,High,Low,Close,Volume\n")
        for date, o, h, l, c, v in bars:
            f.write(f"{date},{o:.4f},{h:.4f},{l:.4f},{c:.4f},{v}\n")


def main():
    bars = read(SOURCE)
    # Each day's move: log change of the close, and open/high/low as ratios of the close.
    moves = []
    for before, day in zip(bars, bars[1:]):
        moves.append((math.log(day[4] / before[4]), day[1] / day[4], day[2] / day[4],
                      day[3] / day[4], day[5]))
    recent = [b for b in bars if b[0] >= FIRST]
    os.makedirs(POOL, exist_ok=True)
    write(os.path.join(POOL, "orcl.txt"), recent)
    for n in range(1, 6):
        rng = random.Random(n)
        close = recent[0][4]
        out = []
        i = 0
        while i < len(recent):
            start = rng.randrange(len(moves) - BLOCK)
            for k in range(BLOCK):
                if i >= len(recent):
                    break
                change, o, h, l, v = moves[start + k]
                if i > 0:
                    close *= math.exp(change)
                if i == 0 or rng.random() >= 0.01:
                    out.append((recent[i][0], close * o, max(close * h, close * o, close),
                                min(close * l, close * o, close), close, v))
                i += 1
        write(os.path.join(POOL, f"orcl-resampled-{n}.txt"), out)


if __name__ == "__main__":
    main()
