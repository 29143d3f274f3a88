# Install rules follow.
