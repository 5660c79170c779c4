#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes telemetry.csv, the demonstration run: make_telemetry.py > telemetry.csv

A crawler inspects a section of DN 300 pipe. It starts at the manhole, slows down at every joint,
stops at the laterals of the built-in pipe (seed 2) and looks into them, and goes back once for a
second look. Distance is the integral of speed; everything else follows from what the crawler does,
plus a little noise, which is the same every time.
"""

import math
import random
import sys

STEP_MS = 200
COUNTER_AT_START = 128.4  # [m] the total counter has run in earlier sections
ACCELERATION = 0.12  # [m/s2]
PIPE_RADIUS = 0.15  # [m]
CAMERA_BELOW_AXIS = 0.012  # [m]


def look(clock, ahead):
    """Pan and tilt [deg] at the wall at `clock` hours, `ahead` metres before the camera."""
    angle = clock / 12 * 2 * math.pi
    x = PIPE_RADIUS * math.sin(angle)
    y = PIPE_RADIUS * math.cos(angle) + CAMERA_BELOW_AXIS
    return (
        math.degrees(math.atan2(x, ahead)),
        math.degrees(math.atan2(y, math.hypot(x, ahead))),
    )


def lateral(distance, clock, speed):
    """Drive up to the lateral, look at it, then into it, and straight ahead again."""
    pan, tilt = look(clock, 0.14)
    return [
        ("drive", distance - 0.14, speed),
        ("look", pan, tilt),
        ("hold", 5.0),
        ("look", pan * 1.45, tilt * 1.15),
        ("hold", 4.0),
        ("look", 0.0, 0.0),
        ("hold", 1.0),
    ]


# What the operator does; distances [m] into the section, speeds [m/min].
PLAN = (
    [("hold", 1.0), ("look", 0.0, 12.0), ("look", 0.0, 0.0)]
    + lateral(3.48, 10, 12.6)
    + lateral(8.51, 10, 9.0)
    + [("drive", 12.05, 8.0), ("look", 14.0, 22.0), ("hold", 5.0), ("look", -20.0, 18.0)]
    + [("hold", 4.0), ("look", 0.0, 0.0), ("hold", 1.0)]
    + lateral(14.44, 10, 9.0)
    + [("drive", 17.6, 10.5), ("hold", 1.5), ("drive", 16.85, 5.0), ("look", 8.0, -14.0)]
    + [("hold", 6.0), ("look", 0.0, 0.0), ("hold", 1.0)]
    + lateral(19.60, 2, 9.5)
    + [("drive", 24.2, 9.5), ("look", 30.0, 6.0), ("look", -30.0, 6.0), ("look", 0.0, 0.0)]
    + lateral(26.52, 10, 9.0)
    + [("drive", 30.9, 10.0), ("hold", 8.0)]
)

# What the operator notes when the camera gets there first: metres, code and remark.
OBSERVATIONS = [
    (0.0, "BCD", "Manhole 4711"),
    (3.34, "BCA", "10 o'clock, 150 mm, open"),
    (8.37, "BCA", "10 o'clock, 150 mm, open"),
    (12.05, "BAB", "1 o'clock, 2 mm, along the pipe"),
    (14.30, "BCA", "10 o'clock, 150 mm, open"),
    (16.86, "BBC", "5 % of the height"),
    (19.46, "BCA", "2 o'clock, 150 mm, open"),
    (26.38, "BCA", "10 o'clock, 150 mm, open"),
    (30.89, "BCE", "Manhole 4712"),
]


def cell(value, decimals):
    text = f"{value:.{decimals}f}"
    return text[1:] if float(text) == 0 and text.startswith("-") else text


def main():
    rng = random.Random(300)
    dt = STEP_MS / 1000
    time_ms = 0
    distance = speed = pan = tilt = 0.0  # [m], [m/s], [deg], [deg]
    pitch_noise = roll_noise = 0.0
    motor_heat = 0.0
    wall = 0.0
    columns = {}
    rows = []
    last = {}
    noted = 0

    def emit():
        nonlocal pitch_noise, roll_noise, motor_heat, wall, noted
        t = time_ms / 1000
        moving = abs(speed) / 0.15
        # The body rocks while it drives, and the pipe's fall changes from one length to the next.
        pitch_noise += 0.25 * (moving * rng.gauss(0, 0.9) - pitch_noise)
        roll_noise += 0.25 * (moving * rng.gauss(0, 1.4) - roll_noise)
        fall = -0.6 + 0.5 * math.sin(distance * 0.83) + 0.25 * math.sin(distance * 2.9 + 1)
        lean = 1.1 * math.sin(distance * 0.61 + 0.4) + 0.5 * math.sin(distance * 2.3)
        motor_heat += dt * (0.035 * moving - 0.0035 * motor_heat)
        # The wall is warmer where a lateral brings waste water in.
        near = max(
            math.exp(-(((distance + 0.14 - at) / 0.35) ** 2))
            for at in (3.48, 8.51, 14.44, 19.60, 26.52)
        )
        turned = min(1.0, math.hypot(pan, tilt) / 45)
        target = 11.2 + 0.02 * distance + 4.6 * near * (0.35 + 0.65 * turned)
        wall = wall + 0.2 * (target - wall) if rows else 11.2
        columns.update(
            TOTAL_DISTANCE_COUNTER=cell(COUNTER_AT_START + distance, 3),
            SECTION_DISTANCE_COUNTER=cell(distance, 3),
            SPEED=cell(speed * 60, 2),
            CAMERA_TILT=cell(tilt, 1),
            CAMERA_PAN=cell(pan, 1),
            CAMERA_PRESSURE=cell(1098 + 2.4 * (1 - math.exp(-t / 90)) + 0.5 * math.sin(t / 7), 0),
            CAMERA_TEMPERATURE=cell(24.6 + 6.5 * (1 - math.exp(-t / 140)), 1),
            CRAWLER_PITCH=cell(fall + pitch_noise, 1),
            CRAWLER_ROLL=cell(lean + roll_noise, 1),
            CRAWLER_TEMPERATURE=cell(21.8 + 0.012 * t + motor_heat, 1),
            CRAWLER_PRESSURE=cell(1145 + 0.9 * motor_heat + 1.6 * math.sin(t / 6 + 1), 0),
            OBJECT_TEMPERATURE=cell(wall + rng.gauss(0, 0.03), 1),
        )
        note = ("", "")
        if (
            time_ms >= 1000
            and noted < len(OBSERVATIONS)
            and distance >= OBSERVATIONS[noted][0]
            and abs(speed) < 0.02
        ):
            note = OBSERVATIONS[noted][1:]
            noted += 1
        rows.append(
            [str(time_ms)]
            + ["" if last.get(k) == v else v for k, v in columns.items()]
            + list(note)
        )
        last.update(columns)

    def advance(new_speed):
        nonlocal time_ms, distance, speed
        distance += (speed + new_speed) / 2 * dt
        speed = new_speed
        time_ms += STEP_MS
        emit()

    emit()
    for step in PLAN:
        if step[0] == "hold":
            for _ in range(round(step[1] / dt)):
                advance(0.0)
        elif step[0] == "look":
            start = pan, tilt
            way = max(abs(step[1] - pan), abs(step[2] - tilt))
            count = max(1, math.ceil(way / (24 * dt)))  # the head turns 24 degrees a second
            for i in range(1, count + 1):
                share = i / count
                share = share * share * (3 - 2 * share)
                pan = start[0] + (step[1] - start[0]) * share
                tilt = start[1] + (step[2] - start[1]) * share
                advance(0.0)
        else:
            goal, cruise = step[1], step[2] / 60
            direction = math.copysign(1.0, goal - distance)
            while True:
                left = (goal - distance) * direction
                from_joint = abs(distance + 0.35 - round(distance + 0.35))
                wanted = cruise * (0.62 if from_joint < 0.13 else 1.0)
                wanted *= 1 + rng.gauss(0, 0.015)
                # What can still be stopped from, with the last centimetres crept.
                wanted = min(wanted, math.sqrt(2 * ACCELERATION * 0.6 * max(0.0, left)), left / dt)
                change = wanted - abs(speed)
                change = max(-ACCELERATION * 2 * dt, min(ACCELERATION * dt, change))
                advance(direction * (abs(speed) + change))
                if (goal - distance) * direction < 0.004:
                    break
            advance(0.0)

    out = sys.stdout
    out.write("t_ms," + ",".join(columns) + ",OBS_OpCode,OBS_Memo\n")
    for row in rows:
        out.write(",".join(f'"{c}"' if "," in c else c for c in row) + "\n")


if __name__ == "__main__":
    main()
