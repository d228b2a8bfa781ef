#!/usr/bin/env python3
"""The batch of batch.py on Dask: two workers on this machine, as processes of their own.

    batch_dask.py scans --lasso lasso.json --out results

The results are those of batch.py to the byte. When a worker is lost, the other one does its scans
again. For a cluster of several machines only the address of the Client is another one; package and
folders must be there, too.
"""

from __future__ import annotations

import contextlib
import sys
import tempfile
from itertools import islice

from distributed import Client, Future, LocalCluster, as_completed

import interrupts
import scene
from batch import Progress, Row, Task, batch_options, finish, plan, row_of
from batch_task import Job, process_scan


def local_cluster(workers: int, folder: str) -> LocalCluster:
    """Workers that listen on the loopback device only, and use the folder for their files."""
    # One thread per worker: a pane belongs to the thread that made it, and the imports and cuts of
    # one pane use all processors already.
    # The addresses of the dashboards matter although none is served: without them the status pages
    # of scheduler and workers would be open to the network.
    return LocalCluster(n_workers=workers, threads_per_worker=1, processes=True, host="127.0.0.1",
                        dashboard_address="127.0.0.1:0", worker_dashboard_address="127.0.0.1:0",
                        scheduler_kwargs={"dashboard": False}, local_directory=folder,
                        memory_limit=0, silence_logs="ERROR")


def run_on_cluster(task: Task, jobs: list[Job], workers: int, progress: Progress) -> list[Row]:
    """Runs the jobs on workers of this machine; the rows are in the order of the jobs."""
    with contextlib.ExitStack() as stack:
        folder = stack.enter_context(tempfile.TemporaryDirectory())
        stack.callback(progress.end)
        with interrupts.blocked():
            cluster = stack.enter_context(local_cluster(workers, folder))
        client = stack.enter_context(Client(cluster))
        # One scan per worker at a time, so that a scan that ends its worker takes no other with it.
        # Not pure: a job writes a picture, so two equal ones are two jobs.
        job_of, waiting = {}, iter(jobs)

        def submit(count: int) -> list[Future]:
            """Hands out some of the jobs that wait."""
            futures = {client.submit(task, job, pure=False): job for job in islice(waiting, count)}
            job_of.update(futures)
            return list(futures)

        done = as_completed(submit(workers))
        for future in done:
            # A job whose worker was lost is done by another one; after some losses it has failed.
            progress.step(row_of(job_of[future], future))
            done.update(submit(1))
        return [row_of(job, future) for future, job in job_of.items()]


def main(arguments: list[str] | None = None, task: Task = process_scan) -> int:
    """The program; a test passes a task of its own."""
    options = batch_options(arguments, __doc__, "--workers", 2)
    jobs = plan(options)
    progress = Progress(len(jobs), sys.stderr)
    return finish(run_on_cluster(task, jobs, options.workers, progress), options.out)


if __name__ == "__main__":
    scene.run(main)
