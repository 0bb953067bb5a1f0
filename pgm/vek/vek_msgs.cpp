// Message factories.
