"""An Ansible callback: appends what each task did on each host to the file named by QUILLET_RECORD, a line each."""

import json
import os

from ansible.plugins.callback import CallbackBase

DOCUMENTATION = """
name: record_results
type: aggregate
short_description: Records the result of each task
description:
  - Appends the result of each task on each host to a file, as JSON.
"""


class CallbackModule(CallbackBase):
    CALLBACK_VERSION = 2.0
    CALLBACK_TYPE = "aggregate"
    CALLBACK_NAME = "record_results"

    def record(self, outcome, result):
        entry = {"host": result._host.name, "task": result.task_name, "outcome": outcome, "result": result._result}
        with open(os.environ["QUILLET_RECORD"], "a", encoding="utf-8") as output:
            output.write(json.dumps(entry, default=str) + "\n")

    def v2_runner_on_ok(self, result):
        self.record("ok", result)

    def v2_runner_on_failed(self, result, ignore_errors=False):
        self.record("failed", result)
