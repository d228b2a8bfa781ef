#!/usr/bin/env python3
"""Cuts every scan of a folder by a stored lasso; writes pictures and a table of numbers.

    batch.py scans --lasso lasso.json --out results --jobs 4

The lasso is {"mode": "inside", "points": [[0.2, 0.2], [0.8, 0.2], [0.5, 0.9]], "view": 4}. The
folder of the results receives table.csv, one row per scan in the order of the file names, and one
picture per scan. The scans are not changed. A scan that cannot be read is a row with its reason;
the exit status is then 1.
"""

from __future__ import annotations

import argparse
import csv
import multiprocessing
import os
import sys
from collections.abc import Callable, Iterable
from concurrent.futures import Future, ProcessPoolExecutor, as_completed
from typing import TextIO

import interrupts
import lasso
import scene
from batch_task import COLUMNS, Job, process_scan

Row = dict[str, str]
Task = Callable[[Job], Row]


class Progress:
    """A bar on a terminal, else one line per scan, so that a log file stays readable."""

    WIDTH = 40

    def __init__(self, total: int, stream: TextIO) -> None:
        self.total, self.stream, self.done = total, stream, 0
        self.is_terminal = stream.isatty()

    def step(self, row: Row) -> None:
        """One more scan is done."""
        self.done += 1
        line = f"{row['file']}: {row['error'] or 'done'}\n"
        if not self.is_terminal:
            self.stream.write(f"{self.done}/{self.total} {line}")
        else:
            filled = self.WIDTH * self.done // self.total
            bar = f"[{'#' * filled}{'.' * (self.WIDTH - filled)}] {self.done}/{self.total}"
            # Back to the start of the line and erase it: a failure is printed above the bar.
            self.stream.write("\r\x1b[K" + (line if row["error"] else "") + bar)
        self.stream.flush()

    def end(self) -> None:
        """Leaves the line of the bar."""
        if self.is_terminal and self.done > 0:
            self.stream.write("\n")


def batch_options(
    arguments: list[str] | None, text: str, workers: str, default: int
) -> argparse.Namespace:
    """The options of a batch. The number of worker processes has another name in each program."""
    parser = scene.parser(text)
    parser.add_argument("folder", help="the folder of the scans")
    parser.add_argument("--lasso", required=True, metavar="JSON", help="the cut")
    parser.add_argument("--out", required=True, metavar="FOLDER", help="for table and pictures")
    parser.add_argument("--size", type=scene.size, default=(640, 480), metavar="WxH",
                        help="pixels of the picture in which the lasso lies (640x480)")
    parser.add_argument(workers, dest="workers", type=int, default=default, metavar="N",
                        help=f"number of worker processes ({default})")
    options = parser.parse_args(arguments)
    if options.workers < 1:
        parser.error(f"{workers} must be at least 1")
    return options


def plan(options: argparse.Namespace) -> list[Job]:
    """The jobs of a batch in the order of the file names; makes the folder of the results."""
    cut = lasso.from_file(options.lasso)
    names = filter(scene.is_scan, os.listdir(options.folder))
    scans = sorted(names, key=os.fsencode)
    if not scans:
        raise ValueError(f"{options.folder}: no scans ({', '.join(scene.SCANS)})")
    os.makedirs(options.out, exist_ok=True)
    return [
        Job(os.path.join(options.folder, name), cut,
            os.path.join(options.out, name + ".png"), options.size)
        for name in scans
    ]


def row_of(job: Job, future: Future) -> Row:
    """The row of a job, also of one whose process was lost."""
    if (error := future.exception()) is None:
        return future.result()
    row = dict.fromkeys(COLUMNS, "")
    return row | {"file": os.path.basename(job.scan), "error": scene.reason(error)}


def finish(rows: Iterable[Row], folder: str) -> int:
    """Writes the table as a whole; returns the exit status."""
    rows = list(rows)
    table = os.path.join(folder, "table.csv")
    # A file name keeps its bytes, also where they are not UTF-8.
    text = {"encoding": "utf-8", "errors": "surrogateescape", "newline": ""}
    with scene.replaced(table) as part, open(part, "w", **text) as file:
        writer = csv.DictWriter(file, COLUMNS, lineterminator="\n")
        writer.writeheader()
        writer.writerows(rows)
    failed = sum(1 for row in rows if row["error"])
    print(f"{table}: {len(rows)} scans, {failed} failed")
    return 1 if failed else 0


def run_in_pool(task: Task, jobs: list[Job], processes: int, progress: Progress) -> list[Row]:
    """Runs the jobs in worker processes; the rows are in the order of the jobs."""
    # Spawned, not forked: a fork copies this process without its threads. A lock that one of them
    # holds, in the graphics driver, in numpy or in the pool, would be locked in the copy for ever.
    pool = ProcessPoolExecutor(min(processes, len(jobs)), multiprocessing.get_context("spawn"))
    try:
        with interrupts.blocked():  # submit() starts the processes
            job_of = {pool.submit(task, job): job for job in jobs}
        for future in as_completed(job_of):
            progress.step(row_of(job_of[future], future))
        return [row_of(job, future) for future, job in job_of.items()]
    finally:
        progress.end()
        # After Ctrl+C, the scans that no process has been given are dropped; the others are done.
        pool.shutdown(wait=True, cancel_futures=True)


def main(arguments: list[str] | None = None, task: Task = process_scan) -> int:
    """The program; a test passes a task of its own."""
    options = batch_options(arguments, __doc__, "--jobs", len(os.sched_getaffinity(0)))
    jobs = plan(options)
    progress = Progress(len(jobs), sys.stderr)
    return finish(run_in_pool(task, jobs, options.workers, progress), options.out)


if __name__ == "__main__":
    scene.run(main)
