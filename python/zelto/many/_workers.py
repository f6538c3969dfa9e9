"""Where tasks run: here, in worker processes of this machine, on a Dask cluster.

Each runs tasks in any order and gives their outcomes as they come; what runs a task that was
lost with its worker is here too.
"""

from __future__ import annotations

import os
import pickle
import queue
import struct
import subprocess
import sys
import threading
from dataclasses import dataclass
from typing import IO, Any, Callable, Iterator, List, Optional, Sequence, Tuple

#: A task that has lost so many workers is not tried again.
MOST_TRIES = 3
_PATIENCE = 5.0


@dataclass(frozen=True)
class Task:
    function: Callable[..., Any]
    arguments: Tuple[Any, ...]


@dataclass(frozen=True)
class Outcome:
    """The number of the task, and its result or why there is none."""

    task: int
    result: Any = None
    reason: Optional[str] = None


def outcome_of(number: int, task: Task) -> Outcome:
    """Runs a task. What is wrong with a scene is an outcome; other exceptions are thrown."""
    try:
        return Outcome(number, task.function(*task.arguments))
    except (OSError, IndexError, ValueError, MemoryError) as error:
        reason = getattr(error, "reason", None) or str(error) or type(error).__name__
        return Outcome(number, reason=reason)


def run_here(tasks: Sequence[Task]) -> Iterator[Outcome]:
    for number, task in enumerate(tasks):
        yield outcome_of(number, task)


# Messages between a process and its workers: a length and a pickle.


def send(stream: IO[bytes], message: Any) -> None:
    data = pickle.dumps(message)
    stream.write(struct.pack("<Q", len(data)) + data)
    stream.flush()


def receive(stream: IO[bytes]) -> Any:
    """Throws EOFError when the other side is gone."""
    head = stream.read(8)
    if len(head) < 8:
        raise EOFError
    (size,) = struct.unpack("<Q", head)
    data = stream.read(size)
    if len(data) < size:
        raise EOFError
    return pickle.loads(data)


class _Worker:
    """A process that works off one task after the other. It is started by itself, not as a copy
    of this process: OpenMP does not survive in copies, and scripts need no main guard."""

    def __init__(self, threads: int) -> None:
        environment = dict(os.environ)
        environment["PYTHONPATH"] = os.pathsep.join(path or os.getcwd() for path in sys.path)
        environment.setdefault("OMP_NUM_THREADS", str(threads))
        environment.setdefault("OMP_WAIT_POLICY", "passive")
        self.process = subprocess.Popen(
            [sys.executable, "-c", "from zelto.many._worker import main; main()"],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            env=environment,
        )

    def work(self, number: int, task: Task) -> Any:
        assert self.process.stdin is not None and self.process.stdout is not None
        send(self.process.stdin, (number, task))
        return receive(self.process.stdout)

    def stop(self, kindly: bool) -> None:
        """A worker that is stopped in the middle of its work takes back what is half done."""
        assert self.process.stdin is not None and self.process.stdout is not None
        try:
            if not kindly:
                self.process.terminate()
            self.process.stdin.close()
        except OSError:
            pass
        try:
            self.process.wait(_PATIENCE)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        self.process.stdout.close()


class _Pool:
    """Workers with a thread each, which feeds it."""

    def __init__(self, tasks: Sequence[Task], jobs: int) -> None:
        self._tasks = tasks
        self._open: "queue.SimpleQueue[Tuple[int, int]]" = queue.SimpleQueue()
        self._done: "queue.SimpleQueue[Any]" = queue.SimpleQueue()
        self._stopping = False
        self._workers: List[Optional[_Worker]] = [None] * jobs
        self._threads_each = max((os.cpu_count() or 1) // jobs, 1)
        for number in range(len(tasks)):
            self._open.put((number, 0))
        self._feeders = [
            threading.Thread(target=self._feed, args=(place,), daemon=True)
            for place in range(jobs)
        ]

    def _feed(self, place: int) -> None:
        try:
            while not self._stopping:
                try:
                    number, tries = self._open.get(timeout=0.05)
                except queue.Empty:
                    continue
                self._do(place, number, tries)
        except BaseException as error:  # told to whoever waits for outcomes
            self._done.put(error)

    def _do(self, place: int, number: int, tries: int) -> None:
        worker = self._workers[place]
        if worker is None:
            worker = self._workers[place] = _Worker(self._threads_each)
        try:
            self._done.put(worker.work(number, self._tasks[number]))
        except (EOFError, BrokenPipeError):
            if self._stopping:
                return
            worker.stop(kindly=False)
            self._workers[place] = None
            if tries + 1 < MOST_TRIES:
                self._open.put((number, tries + 1))
            else:
                reason = f"its worker was lost {MOST_TRIES} times"
                self._done.put(Outcome(number, reason=reason))

    def outcomes(self) -> Iterator[Outcome]:
        for feeder in self._feeders:
            feeder.start()
        finished = False
        try:
            for _ in self._tasks:
                found = self._done.get()
                if isinstance(found, BaseException):
                    raise found
                yield found
            finished = True
        finally:
            self._stopping = True
            for worker in self._workers:
                if worker is not None:
                    worker.stop(kindly=finished)
            for feeder in self._feeders:
                feeder.join()


def run_in_pool(tasks: Sequence[Task], jobs: int) -> Iterator[Outcome]:
    return _Pool(tasks, min(jobs, len(tasks))).outcomes()


def run_on_cluster(tasks: Sequence[Task], client: Any) -> Iterator[Outcome]:
    """On the workers of a Dask client. The scheduler runs a lost worker's tasks again."""
    import distributed
    from distributed.scheduler import KilledWorker

    as_completed: Any = distributed.as_completed

    futures = {
        client.submit(outcome_of, number, task, pure=False): number
        for number, task in enumerate(tasks)
    }
    try:
        for future in as_completed(list(futures)):
            try:
                yield future.result()
            except KilledWorker:
                yield Outcome(futures[future], reason="its worker was lost too often")
            future.release()
    except BaseException:
        client.cancel(list(futures), force=True)
        raise


class Workers:
    """Where the tasks of a call run."""

    def __init__(self, jobs: Optional[int], client: Any) -> None:
        self._client = client
        if client is not None:
            self._close_client = isinstance(client, str)
            if self._close_client:
                self._client = connect(client)
            self.count = max(sum(self._client.nthreads().values()), 1)
        else:
            self._close_client = False
            self.count = jobs if jobs is not None else os.cpu_count() or 1

    def run(self, tasks: Sequence[Task]) -> Iterator[Outcome]:
        if not tasks:
            return iter(())
        if self._client is not None:
            return run_on_cluster(tasks, self._client)
        if self.count == 1:
            return run_here(tasks)
        return run_in_pool(tasks, self.count)

    def close(self) -> None:
        if self._close_client:
            self._client.close()


def connect(address: str) -> Any:
    """A client of the scheduler at an address, as tcp://host:8786."""
    try:
        import distributed
    except ImportError:
        raise RuntimeError(
            "a cluster takes Dask's distributed scheduler: apt-get install python3-distributed"
        ) from None
    client: Any = distributed.Client
    return client(address)
