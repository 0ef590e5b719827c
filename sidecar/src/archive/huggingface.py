"""The files that let other programs load an archived run as it stands."""

from __future__ import annotations

from src.models.llama import INITIAL_DEVIATION, LlamaShape

BEGIN_TOKEN = "<|begin_of_text|>"
END_TOKEN = "<|end_of_text|>"


def model_config(shape: LlamaShape, bos_token_id: int, eos_token_id: int) -> dict:
    """`config.json`. The RoPE base stands twice because readers disagree on where to look for it."""
    return {
        "architectures": ["LlamaForCausalLM"],
        "model_type": "llama",
        "vocab_size": shape.vocab_size,
        "hidden_size": shape.hidden_size,
        "intermediate_size": shape.feed_forward_size,
        "num_hidden_layers": shape.layers,
        "num_attention_heads": shape.heads,
        "num_key_value_heads": shape.key_value_heads,
        "head_dim": shape.head_size,
        "max_position_embeddings": shape.context,
        "hidden_act": "silu",
        "rms_norm_eps": shape.norm_epsilon,
        "rope_theta": shape.rope_base,
        "rope_parameters": {"rope_type": "default", "rope_theta": shape.rope_base},
        "attention_bias": False,
        "attention_dropout": 0.0,
        "mlp_bias": False,
        "tie_word_embeddings": shape.tie_embeddings,
        "initializer_range": INITIAL_DEVIATION,
        "bos_token_id": bos_token_id,
        "eos_token_id": eos_token_id,
        "torch_dtype": "float32",
        "use_cache": True,
    }


def shape_from_config(config: dict) -> LlamaShape:
    """The reverse of `model_config`; raises KeyError or TypeError for a file that is none of ours."""
    return LlamaShape(
        vocab_size=config["vocab_size"],
        hidden_size=config["hidden_size"],
        layers=config["num_hidden_layers"],
        heads=config["num_attention_heads"],
        key_value_heads=config["num_key_value_heads"],
        feed_forward_size=config["intermediate_size"],
        context=config["max_position_embeddings"],
        tie_embeddings=config["tie_word_embeddings"],
        rope_base=float(config["rope_theta"]),
        norm_epsilon=config["rms_norm_eps"],
    )


def generation_config(bos_token_id: int, eos_token_id: int) -> dict:
    return {
        "bos_token_id": bos_token_id,
        "eos_token_id": eos_token_id,
        "do_sample": True,
        "temperature": 0.8,
        "top_p": 0.95,
    }


def tokenizer_config(shape: LlamaShape) -> dict:
    return {
        "tokenizer_class": "PreTrainedTokenizerFast",
        "bos_token": BEGIN_TOKEN,
        "eos_token": END_TOKEN,
        "model_max_length": shape.context,
        "clean_up_tokenization_spaces": False,
    }
