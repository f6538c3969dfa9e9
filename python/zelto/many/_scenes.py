"""One call over many scenes: cutting, running, gathering."""

from __future__ import annotations

from dataclasses import dataclass, field
from types import TracebackType
from typing import Any, Callable, Dict, List, Optional, Sequence, Tuple, Type

from .._arguments import whole
from .._progress import Progress, as_callable
from ._tasks import Facts, Part, facts_of
from ._workers import Task, Workers

#: Fewer rows are not worth a task of their own.
_LEAST_ROWS = 256


@dataclass(frozen=True)
class SceneResult:
    """What came of a scene."""

    path: str
    #: None where there is a reason.
    value: Any = None
    #: Why there is no value.
    reason: Optional[str] = None

    def to_dict(self) -> Dict[str, Any]:
        if self.reason is not None:
            return {"path": self.path, "reason": self.reason}
        value = self.value
        return {"path": self.path, "value": value.to_dict() if hasattr(value, "to_dict") else value}


@dataclass
class _Scene:
    path: str
    facts: Optional[Facts] = None
    #: How many parts are under way, and what has come of the others, by their place.
    missing: int = 0
    found: Dict[int, Any] = field(default_factory=dict)
    reason: Optional[str] = None
    value: Any = None

    @property
    def parts(self) -> List[Any]:
        return [self.found[place] for place in sorted(self.found)]


class Run:
    """A call's scenes and workers; a ``with`` statement ends the workers."""

    def __init__(
        self,
        paths: Sequence[str],
        jobs: Optional[int],
        client: Any,
        on_result: Optional[Callable[[SceneResult], object]],
        progress: Progress,
    ) -> None:
        if jobs is not None:
            jobs = whole("jobs", jobs, 1, 1024)
        if on_result is not None and not callable(on_result):
            raise TypeError("on_result is a callable")
        self.silent = False
        self._tell = as_callable(progress)
        self._on_result = on_result
        self._scenes = [_Scene(path) for path in paths]
        self._workers = Workers(jobs, client)

    def __enter__(self) -> "Run":
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        error: Optional[BaseException],
        trace: Optional[TracebackType],
    ) -> None:
        self._workers.close(kindly=kind is None)

    def measured(self) -> Tuple[str, ...]:
        return tuple(scene.path for scene in self._scenes if scene.reason is None)

    def failures(self) -> Tuple[SceneResult, ...]:
        return tuple(
            SceneResult(scene.path, reason=scene.reason)
            for scene in self._scenes
            if scene.reason is not None
        )

    def results(self) -> List[SceneResult]:
        return [SceneResult(scene.path, scene.value, scene.reason) for scene in self._scenes]

    # Facts.

    def _look(self) -> None:
        """Makes sure that the facts of all readable scenes are known."""
        unknown = [s for s in self._scenes if s.facts is None and s.reason is None]
        tasks = [Task(facts_of, (Part(scene.path),)) for scene in unknown]
        # The parts that the scenes are cut into keep all workers busy.
        for outcome in self._workers.run(tasks, at_once=self._workers.count):
            scene = unknown[outcome.task]
            scene.facts = outcome.result
            if outcome.reason is not None:
                self._fail(scene, outcome.reason)

    def _first(self) -> Facts:
        self._look()
        for scene in self._scenes:
            if scene.facts is not None:
                return scene.facts
        return Facts(0, 1, ())

    def band_count(self) -> int:
        """Of the first scene that can be read."""
        return len(self._first().dtypes)

    def dtype(self, band: int) -> str:
        """Of a band over all scenes: that of whole numbers where all are."""
        self._look()
        kinds = {s.facts.dtypes[band - 1] for s in self._scenes if s.facts and s.reason is None}
        return next((kind for kind in sorted(kinds) if kind.startswith("float")), "uint8")

    # Work.

    def by_parts(
        self,
        rows: Optional[int],
        bands: Sequence[int],
        make: Callable[[Part], Task],
        merge: Callable[[List[Any]], Any],
    ) -> List[_Scene]:
        """Runs a task for every part of every scene.

        :return: the scenes of which all parts were done, in order
        """
        if rows is not None:
            rows = whole("rows", rows, 1)
        self._look()
        usable = []
        for scene in self._scenes:
            if scene.facts is None or scene.reason is not None:
                continue
            if max(bands, default=1) > len(scene.facts.dtypes):
                self._fail(scene, f"it has {len(scene.facts.dtypes)} bands, not {max(bands)}")
            else:
                usable.append(scene)
        work: List[Tuple[_Scene, int]] = []
        tasks: List[Task] = []
        for scene in usable:
            parts = self._cut(scene, rows, len(usable))
            scene.missing, scene.found = len(parts), {}
            for place, part in enumerate(parts):
                work.append((scene, place))
                tasks.append(make(part))
        self._gather(work, tasks, merge)
        return [scene for scene in usable if scene.reason is None]

    def whole(self, make: Callable[[Part], Task]) -> None:
        """Runs one task for every scene."""
        work = [(scene, 0) for scene in self._scenes]
        for scene in self._scenes:
            scene.missing = 1
        tasks = [make(Part(scene.path)) for scene in self._scenes]
        self._gather(work, tasks, lambda parts: parts[0])

    def _cut(self, scene: _Scene, rows: Optional[int], scenes: int) -> List[Part]:
        """Parts that end where the file's blocks do; one for each of many scenes."""
        assert scene.facts is not None
        height, block = scene.facts.height, max(scene.facts.block, 1)
        if rows is None:
            wanted = max(-(-2 * self._workers.count // scenes), 1)
            if self._workers.count == 1 or scenes >= 2 * self._workers.count:
                wanted = 1
            rows = max(-(-height // wanted), _LEAST_ROWS)
            if block < rows:
                rows = -(-rows // block) * block
        if rows >= height:
            return [Part(scene.path)]
        return [
            Part(scene.path, first, min(rows, height - first)) for first in range(0, height, rows)
        ]

    def _gather(
        self,
        work: Sequence[Tuple[_Scene, int]],
        tasks: Sequence[Task],
        merge: Callable[[List[Any]], Any],
    ) -> None:
        for done, outcome in enumerate(self._workers.run(tasks, at_once=len(tasks)), 1):
            scene, place = work[outcome.task]
            scene.missing -= 1
            if outcome.reason is not None:
                if scene.reason is None:
                    self._fail(scene, outcome.reason)
            else:
                scene.found[place] = outcome.result
                if scene.missing == 0 and scene.reason is None:
                    scene.value = merge(scene.parts)
                    self._report(scene)
            if self._tell is not None:
                self._tell(done / len(tasks))

    def _fail(self, scene: _Scene, reason: str) -> None:
        scene.reason = reason
        self._report(scene)

    def _report(self, scene: _Scene) -> None:
        if self._on_result is not None and (not self.silent or scene.reason is not None):
            self._on_result(SceneResult(scene.path, scene.value, scene.reason))
