#include "backend/bridge/LocateError.h"

#include "backend/protocol/Overloaded.h"

namespace zorel::backend::bridge {

QString LocateError::description() const
{
    return std::visit(protocol::Overloaded{
                          [](const ScriptsRootNotFound &error) {
                              return QStringLiteral("Training scripts not found at ") + error.path;
                          },
                          [](const NoPythonWithMLX &error) {
                              return QStringLiteral("No Python with MLX found. Tried: ") +
                                     error.tried.join(QStringLiteral(", ")) +
                                     QStringLiteral(". Install with: python3 -m pip install mlx");
                          },
                      },
                      reason);
}

} // namespace zorel::backend::bridge
