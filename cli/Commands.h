#pragma once

namespace CLI {
class App;
}

namespace zelto::cli {

// Each adds its subcommand, with options, help and what runs, to the program. What runs
// throws Failure when the work fails and UsageError when options contradict each other.

void AddAoi(CLI::App& program);
void AddClasses(CLI::App& program);
void AddCompose(CLI::App& program);
void AddCopy(CLI::App& program);
void AddCreate(CLI::App& program);
void AddFile(CLI::App& program);
void AddGeoref(CLI::App& program);
void AddHistogram(CLI::App& program);
void AddInfo(CLI::App& program);
void AddPolygonize(CLI::App& program);
void AddPyramids(CLI::App& program);
void AddRender(CLI::App& program);
void AddReproject(CLI::App& program);
void AddSamples(CLI::App& program);
void AddSrs(CLI::App& program);
void AddStats(CLI::App& program);
void AddVector(CLI::App& program);
void AddZonal(CLI::App& program);

} // namespace zelto::cli
