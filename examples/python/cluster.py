"""Statistics of many scenes on a Dask cluster: the same numbers as on one machine.

    dask-scheduler &
    dask-worker tcp://HOST:8786 &      # on every machine, where the scenes can be read
    python3 cluster.py tcp://HOST:8786 SCENE…
"""

import argparse

from zelto import many


def main() -> None:
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("scheduler")
    arguments.add_argument("scenes", nargs="+")
    options = arguments.parse_args()

    found = many.statistics(
        options.scenes,
        client=options.scheduler,
        on_result=lambda scene: print(scene.path, scene.reason or "done"),
        progress=True,
    )
    for row in found.rows():
        print(row)


if __name__ == "__main__":
    main()
