#include "inspect/InspectedImage.h"

namespace inspect
{

std::shared_ptr<const InspectedImage> inspect_image(const QString& path, const Profile* profile)
{
    auto inspected = std::make_shared<InspectedImage>();
    inspected->image = read_image(path, profile ? profile->boundaries : QSet<unsigned int>());
    if (profile != nullptr && inspected->image.loads) {
        inspected->fit = fit(*profile, inspected->image);
    }
    return inspected;
}

void add_problems(Report& report, const InspectedImage& inspected)
{
    const std::vector<Problem>& read = inspected.image.problems;
    report.problems.insert(report.problems.end(), read.begin(), read.end());
    if (inspected.fit) {
        const std::vector<Problem>& fit = inspected.fit->problems;
        report.problems.insert(report.problems.end(), fit.begin(), fit.end());
    }
    report.incomplete = report.incomplete || !inspected.image.is_readable;
}

} // namespace inspect
