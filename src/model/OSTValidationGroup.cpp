#include "model/OSTValidationGroup.h"

namespace ostrel {

OSTValidationGroup::~OSTValidationGroup() = default;

std::shared_ptr<OSTValidationGroupModel> OSTValidationGroup::model() const
{
    return m_model.lock();
}

void OSTValidationGroup::setModel(const std::shared_ptr<OSTValidationGroupModel> &model)
{
    m_model = model;
}

} // namespace ostrel
