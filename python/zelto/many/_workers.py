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

    def end(self, kindly: bool) -> None:
        """Tells it to. A worker that is stopped in the middle of its work takes back what is half
        done."""
        assert self.process.stdin is not None
        try:
            if not kindly:
                self.process.terminate()
            self.process.stdin.close()
        except OSError:
            pass

    def wait(self) -> None:
        """Returns when it has ended."""
        assert self.process.stdout is not None
        try:
            self.process.wait(_PATIENCE)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        self.process.stdout.close()


class Pool:
    """Worker processes, which are started when they are needed and stay until the pool is closed:
    one run of tasks after the other has them."""

    def __init__(self, jobs: int) -> None:
        self._workers: List[Optional[_Worker]] = [None] * jobs

    def run(self, tasks: Sequence[Task], at_once: int) -> Iterator[Outcome]:
        """The outcomes as they come. When they are not all asked for, the workers end.

        :param at_once: how many tasks share the processors, in this run or a later one
        """
        sharing = min(len(self._workers), at_once)
        run = _Feeding(tasks, self._workers, max((os.cpu_count() or 1) // sharing, 1))
        finished = False
        try:
            yield from run.outcomes()
            finished = True
        finally:
            run.stopping = True
            if not finished:
                self.close(kindly=False)
            run.end()

    def close(self, kindly: bool = True) -> None:
        ended = []
        for place, worker in enumerate(self._workers):
            if worker is not None:
                self._workers[place] = None
                worker.end(kindly)
                ended.append(worker)
        for worker in ended:
            worker.wait()


class _Feeding:
    """One run: a thread for each worker, which gives it task after task."""

    def __init__(
        self, tasks: Sequence[Task], workers: List[Optional[_Worker]], threads_each: int
    ) -> None:
        self._tasks = tasks
        self._workers = workers
        self._threads_each = threads_each
        #: Tasks with the number of workers that they have lost; None ends a feeder.
        self._open: "queue.SimpleQueue[Optional[Tuple[int, int]]]" = queue.SimpleQueue()
        self._done: "queue.SimpleQueue[Any]" = queue.SimpleQueue()
        self.stopping = False
        for number in range(len(tasks)):
            self._open.put((number, 0))
        self._feeders = [
            threading.Thread(target=self._feed, args=(place,), daemon=True)
            for place in range(min(len(workers), len(tasks)))
        ]
        for feeder in self._feeders:
            feeder.start()

    def _feed(self, place: int) -> None:
        try:
            while not self.stopping:
                entry = self._open.get()
                if entry is None:
                    return
                self._do(place, *entry)
        except BaseException as error:  # told to whoever waits for outcomes
            self._done.put(error)

    def _do(self, place: int, number: int, tries: int) -> None:
        worker = self._workers[place]
        if worker is None:
            worker = self._workers[place] = _Worker(self._threads_each)
        if self.stopping:
            return  # it was started too late to be told; closing the pool ends it
        try:
            self._done.put(worker.work(number, self._tasks[number]))
        except (EOFError, BrokenPipeError):
            if self.stopping:
                return
            self._workers[place] = None
            worker.end(kindly=False)
            worker.wait()
            if tries + 1 < MOST_TRIES:
                self._open.put((number, tries + 1))
            else:
                reason = f"its worker was lost {MOST_TRIES} times"
                self._done.put(Outcome(number, reason=reason))

    def outcomes(self) -> Iterator[Outcome]:
        for _ in self._tasks:
            found = self._done.get()
            if isinstance(found, BaseException):
                raise found
            yield found

    def end(self) -> None:
        """Ends the feeders; workers that are in the middle of a task must have been told to end."""
        for _ in self._feeders:
            self._open.put(None)
        for feeder in self._feeders:
            feeder.join()


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
        self._pool: Optional[Pool] = None
        self._close_client = isinstance(client, str)
        if client is not None:
            if self._close_client:
                self._client = connect(client)
            self.count = max(sum(self._client.nthreads().values()), 1)
        else:
            self.count = jobs if jobs is not None else os.cpu_count() or 1

    def run(self, tasks: Sequence[Task], at_once: int) -> Iterator[Outcome]:
        """The outcomes as they come.

        :param at_once: how many tasks share the processors, in this run or a later one
        """
        if not tasks:
            return iter(())
        if self._client is not None:
            return run_on_cluster(tasks, self._client)
        if self.count == 1:
            return run_here(tasks)
        if self._pool is None:
            self._pool = Pool(self.count)
        return self._pool.run(tasks, at_once)

    def close(self, kindly: bool) -> None:
        if self._pool is not None:
            self._pool.close(kindly)
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
