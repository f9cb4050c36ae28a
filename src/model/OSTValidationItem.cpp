#include "model/OSTValidationItem.h"

namespace ostrel {

OSTValidationItem::~OSTValidationItem() = default;

std::shared_ptr<OSTValidationItemModel> OSTValidationItem::model() const
{
    return m_model.lock();
}

void OSTValidationItem::setModel(const std::shared_ptr<OSTValidationItemModel> &model)
{
    m_model = model;
    modelDidChange();
}

} // namespace ostrel
